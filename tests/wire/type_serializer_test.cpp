#include "wire/type_serializer.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "support/temporary_home.h"
#include "support/wire_items.h"
#include "wire/type_file.h"

namespace nvsupport {
namespace {

using namespace std::string_literals;
using testing::Int;
using testing::Text;

// A channel over memory: what was written is what can be read. As over HTTP, a part of an item counts as read.
class MemoryChannel final : public CTypeSerializer {
 public:
  explicit MemoryChannel(std::string content = {}, bool wideStrings = true) : bytes(std::move(content)) {
    wide = wideStrings ? 1 : 0;
  }
  void Write(const void* data, std::int32_t size) override {
    bytes.append(static_cast<const char*>(data), static_cast<std::size_t>(size));
  }
  bool Read(void* data, std::int32_t size) override {
    const std::size_t piece = bytes.copy(static_cast<char*>(data), static_cast<std::size_t>(size), position);
    position += piece;
    return piece > 0;
  }

  std::string bytes;
  std::size_t position = 0;  // of the next byte to read
};

TEST(TypeSerializer, TurnsEachItemIntoItsBytes) {
  MemoryChannel channel;
  channel.WriteValue(std::int32_t{-2});
  channel.WriteValue(0x89ABCDEFu);
  channel.WriteValue(std::uint8_t{0x80});
  const double number = 1.5;
  channel.WriteBlock(&number, sizeof number);
  channel.WriteString("");
  channel.WriteString("A\xE9\0"s);
  EXPECT_EQ(channel.bytes, "\xFE\xFF\xFF\xFF\xEF\xCD\xAB\x89\x80\0\0\0\0\0\0\xF8\x3F\0\0\0\0\3\0\0\0A\0\xE9\xFF\0\0"s);
  EXPECT_EQ(channel.Count(), channel.bytes.size());
}

TEST(TypeSerializer, ReadsBackEveryCharacterInBothForms) {
  std::string text;
  for (int character = 0; character < 600; ++character) text += static_cast<char>(character);
  for (const bool wide : {true, false}) {
    MemoryChannel channel({}, wide);
    channel.WriteString(text);
    EXPECT_EQ(channel.bytes.size(), wide ? 1204u : 604u);
    std::string read = "before";
    EXPECT_TRUE(channel.ReadString(read));
    EXPECT_EQ(read, text);
  }
}

TEST(TypeSerializer, StaysBadOnceAReadBroughtNothing) {
  MemoryChannel channel(Int(3) + "\xE9\x7Bz");
  std::string text;
  EXPECT_FALSE(channel.ReadString(text));
  EXPECT_EQ(text, "\xE9z") << "a unit counts by its low byte, even half a unit";
  channel.bytes += "\5\0"s;
  std::uint32_t value = 0xFFFFFFFF;
  channel.ReadValue(value);
  EXPECT_EQ(value, 0xFFFF0005u) << "reads go on; only the bytes that came change the value";
  EXPECT_FALSE(channel.IsGood());
}

TEST(TypeSerializer, FillsFixedFieldsWithinTheirWidthOrNotAtAll) {
  const std::pair<std::string, const char*> cases[] = {
      {Text("1234567"), "1234567"}, {Text("12345678"), "1234567"}, {Text("12\0004567"s), "12"},
      {Int(4) + "a", "before!##"},  {Int(100001), "before!##"},
  };
  for (const auto& [bytes, left] : cases) {
    MemoryChannel channel(bytes);
    char field[10] = "before!##";
    EXPECT_EQ(channel.ReadFixedString(field, 8), left[0] == '1') << left;
    EXPECT_STREQ(field, left);
    EXPECT_EQ(field[8], '#') << "nothing behind the field changes";
  }
}

TEST(TypeFile, CarriesItemsAndTurnsBadWhereOneIsCutOrNothingCanBeWritten) {
  const testing::TemporaryFolder folder;
  const std::string path = folder / "items";
  CTypeFileOut out(path.c_str());
  out.WriteValue(std::int32_t{-7});
  out.WriteString("text");
  EXPECT_TRUE(out.Close());
  const std::string whole = testing::ReadWholeFile(path);
  EXPECT_EQ(whole, Int(-7) + Text("text"));
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    testing::WriteWholeFile(path, whole.substr(0, size));
    CTypeFileIn in(path.c_str());
    std::int32_t value = 0;
    in.ReadValue(value);
    EXPECT_EQ(in.IsGood() ? value : 0, size >= 4 ? -7 : 0) << size;
    std::string text;
    EXPECT_EQ(in.ReadString(text), size == whole.size()) << size;
  }
  for (const std::string& place : {folder / "missing/items", "/dev/full"s}) {
    CTypeFileOut nowhere(place.c_str());
    nowhere.WriteValue(1u);
    EXPECT_FALSE(nowhere.Close()) << place;
  }
}

}  // namespace
}  // namespace nvsupport
