// Multi-byte text in a UTF-8 code page, in which the tests run.
#include <gtest/gtest.h>

#include <string>

#include "platform/platform.h"

namespace {

std::string Copy(const std::string& text, std::size_t count) {
  std::string field(count + 1, '#');
  _mbsnbcpy(reinterpret_cast<unsigned char*>(field.data()), reinterpret_cast<const unsigned char*>(text.c_str()),
            count);
  return field;
}

int CompareFolded(const char* left, const char* right) {
  return _mbsicmp(reinterpret_cast<const unsigned char*>(left), reinterpret_cast<const unsigned char*>(right));
}

TEST(MultiByteText, CopyPadsAndNeverSplitsACharacter) {
  using namespace std::string_literals;
  EXPECT_EQ(Copy("ab", 4), "ab\0\0#"s);
  EXPECT_EQ(Copy("abcd", 3), "abc#"s);
  EXPECT_EQ(Copy("abc\u20ac", 6), "abc\u20ac#"s);
  EXPECT_EQ(Copy("abc\u20ac", 5), "abc\0\0#"s);
  EXPECT_EQ(Copy("abc\u20ac", 4), "abc\0#"s);
  EXPECT_EQ(Copy("a\xff\u00e9", 3), "a\xff\0#"s);
  EXPECT_EQ(Copy("abc", 0), "#"s);
}

TEST(MultiByteText, BytesThatAreNoUtf8AreShownAsWindows1252) {
  EXPECT_EQ(platform::ToUtf8("Stra\u00dfe"), "Stra\u00dfe");
  EXPECT_EQ(platform::ToUtf8("Stra\xdf"
                             "e \x80"),
            "Stra\u00dfe \u20ac");
  EXPECT_EQ(platform::ToUtf8("cut \xe2\x82"), "cut \u00e2\u201a");
  EXPECT_EQ(platform::ToUtf8("\xed\xa0\x80"), "\u00ed\u00a0\u20ac") << "a half of a surrogate pair is no character";
  EXPECT_EQ(platform::FromUtf8("Stra\u00dfe"), "Stra\u00dfe");
  EXPECT_EQ(platform::ToUtf8(std::string(2000, '\xe9')).size(), 4000u);
}

TEST(MultiByteText, CompareFoldsTheLettersAToZAlone) {
  EXPECT_EQ(CompareFolded("nvPKG", "NVpkg"), 0);
  EXPECT_LT(CompareFolded("a", "B"), 0);
  EXPECT_GT(CompareFolded("ab", "A"), 0);
  EXPECT_NE(CompareFolded("\u00c9", "\u00e9"), 0);
}

}  // namespace
