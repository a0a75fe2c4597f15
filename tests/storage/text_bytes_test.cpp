// Bytes of texts: in UTF-8, in a code page of double-byte characters, hashed.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "platform/platform.h"
#include "sip_hash.h"
#include "support/run_program.h"
#include "support/temporary_home.h"

namespace {

TEST(MultiByteText, BytesThatAreNoUtf8AreShownAsWindows1252) {
  EXPECT_EQ(platform::ToUtf8("Gru\xdf \x80, cut \xe2\x82"), "Gru\u00df \u20ac, cut \u00e2\u201a");
  EXPECT_EQ(platform::ToUtf8("\xed\xa0\x80"), "\u00ed\u00a0\u20ac") << "a half of a surrogate pair is no character";
  EXPECT_EQ(platform::ToUtf8("\xf4\x8f\xbf\xbf|\xf4\x90\x85\x85|\xe9"), "\U0010ffff|\u00f4\uFFFD\u2026\u2026|\u00e9")
      << "nor one beyond";
}

// The code page is found once in a process: the checks run in a fresh one, which ends with 0 when they hold. `locales`
// is that process's own folder.
void CheckGbk(const std::filesystem::path& locales) {
  setenv("LOCPATH", locales.c_str(), 1);
  setenv("LC_ALL", "zh_CN.GBK", 1);
  const std::string text = "abc\xd6\xd0";  // a, b, c and U+4E2D
  unsigned char field[5] = "####";
  _mbsnbcpy(field, reinterpret_cast<const unsigned char*>(text.c_str()), 4);
  EXPECT_EQ(std::string(field, field + 5), std::string("abc\0\0", 5)) << "no half of a character";
  EXPECT_EQ(platform::ToUtf8(text), "abc\u4e2d");
  EXPECT_EQ(platform::ToUtf8("\xe9"), "\u00e9");
  EXPECT_EQ(platform::FromUtf8("abc\u4e2d\u00df!"), text + "?!");
  std::filesystem::remove_all(locales);
  std::_Exit(testing::Test::HasFailure() ? 1 : 0);  // at once: the C library keeps what it read from LOCPATH
}

void CheckMissingLocale() {
  setenv("LC_ALL", "xx_XX.GBK", 1);
  std::_Exit(platform::FromUtf8("\u20ac") == "\u20ac" ? 0 : 1);
}

TEST(MultiByteText, FollowsTheCodePageOfTheEnvironment) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(CheckMissingLocale(), testing::ExitedWithCode(0), "") << "UTF-8 where the locale is not installed";
  const nvsupport::testing::TemporaryFolder folder;
  const auto made =
      nvsupport::testing::RunProgram({"localedef", "-c", "-i", "zh_CN", "-f", "GBK", folder / "zh_CN.GBK"});
  if (made.exitCode < 0 || made.exitCode > 1) GTEST_SKIP() << "this system has no sources of locales";
  EXPECT_EXIT(CheckGbk(folder.path), testing::ExitedWithCode(0), "");
}

// The example of the hash's authors: the key is the bytes 0 to 15, the text the bytes 0 to 14.
TEST(SipHash, GivesThePublishedValue) {
  const std::string text("\0\1\2\3\4\5\6\7\10\11\12\13\14\15\16", 15);
  EXPECT_EQ(platform::SipHash({0x0706050403020100, 0x0f0e0d0c0b0a0908}, text), 0xa129ca6149be45e5u);
}

}  // namespace
