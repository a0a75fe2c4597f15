#include "wire/type_serializer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>

#include "support/temporary_home.h"
#include "wire/type_file.h"

namespace nvsupport {
namespace {

using namespace std::string_literals;

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
    const std::size_t piece = std::min(bytes.size() - position, static_cast<std::size_t>(size));
    std::memcpy(data, bytes.data() + position, piece);
    position += piece;
    return piece > 0;
  }

  std::string bytes;
  std::size_t position = 0;
};

std::string LengthBytes(std::uint32_t length) {
  return {reinterpret_cast<const char*>(&length), sizeof length};
}

TEST(TypeSerializer, TurnsEachItemIntoItsBytes) {
  struct Case {
    bool wide;
    std::function<void(CTypeSerializer&)> write;
    std::string bytes;
  };
  const double number = 1.5;
  const Case cases[] = {
      {true, [](auto& channel) { channel.WriteValue(std::int32_t{-2}); }, "\xFE\xFF\xFF\xFF"s},
      {true, [](auto& channel) { channel.WriteValue(0x89ABCDEFu); }, "\xEF\xCD\xAB\x89"s},
      {true, [](auto& channel) { channel.WriteValue(std::uint8_t{0x80}); }, "\x80"s},
      {true, [&](auto& channel) { channel.WriteBlock(&number, sizeof number); }, "\0\0\0\0\0\0\xF8\x3F"s},
      {true, [](auto& channel) { channel.WriteString(""); }, "\0\0\0\0"s},
      {true, [](auto& channel) { channel.WriteString("abc"); }, "\3\0\0\0a\0b\0c\0"s},
      {true, [](auto& channel) { channel.WriteString("A\xE9\0"s); }, "\3\0\0\0A\0\xE9\xFF\0\0"s},
      {false, [](auto& channel) { channel.WriteString("A\xE9"); }, "\2\0\0\0A\xE9"s},
  };
  for (const Case& each : cases) {
    MemoryChannel channel({}, each.wide);
    each.write(channel);
    EXPECT_EQ(channel.bytes, each.bytes);
    EXPECT_EQ(channel.Count(), each.bytes.size());
  }
}

TEST(TypeSerializer, ReadsBackEveryCharacterInBothForms) {
  std::string text;
  for (int character = 0; character < 256; ++character) text += static_cast<char>(character);
  for (const bool wide : {true, false}) {
    MemoryChannel written({}, wide);
    written.WriteString(text);
    MemoryChannel channel(written.bytes, wide);
    std::string read = "before";
    EXPECT_TRUE(channel.ReadString(read));
    EXPECT_EQ(read, text);
    EXPECT_EQ(channel.Count(), written.Count());
  }
}

TEST(TypeSerializer, IgnoresTheHighByteOfAUnit) {
  MemoryChannel channel("\2\0\0\0\xE9\x00\xE9\x7B"s);
  std::string text;
  EXPECT_TRUE(channel.ReadString(text));
  EXPECT_EQ(text, "\xE9\xE9");
}

TEST(TypeSerializer, RefusesStringsOverTheLimitAndStaysGood) {
  for (const std::uint32_t length : {100001u, 0x80000000u, 0xFFFFFFFFu}) {
    MemoryChannel channel(LengthBytes(length) + "rest");
    std::string text = "before";
    EXPECT_FALSE(channel.ReadString(text)) << length;
    EXPECT_TRUE(channel.IsGood());
    EXPECT_EQ(channel.position, 4u);
    EXPECT_EQ(text, "");
  }
  MemoryChannel channel(LengthBytes(100000) + std::string(200000, 'x'));
  std::string text;
  EXPECT_TRUE(channel.ReadString(text));
  EXPECT_EQ(text.size(), 100000u);
}

TEST(TypeSerializer, KeepsTheCharactersThatCameBeforeAStringBrokeOff) {
  MemoryChannel channel("\3\0\0\0a\0b"s);
  std::string text;
  EXPECT_FALSE(channel.ReadString(text));
  EXPECT_EQ(text, "ab") << "half a unit brings its character";
  EXPECT_FALSE(channel.IsGood());
}

TEST(TypeSerializer, StaysBadOnceAReadBroughtNothing) {
  MemoryChannel channel("\1\0"s);
  std::uint32_t value = 0xFFFFFFFF;
  channel.ReadValue(value);
  EXPECT_EQ(value, 0xFFFF0001u) << "only the bytes that came change the value";
  EXPECT_TRUE(channel.IsGood());
  channel.ReadValue(value);
  EXPECT_FALSE(channel.IsGood());
  channel.bytes += "\5\0\0\0"s;
  channel.ReadValue(value);
  EXPECT_EQ(value, 5u) << "reads go on";
  EXPECT_FALSE(channel.IsGood());
}

TEST(TypeSerializer, FillsFixedFieldsWithinTheirWidth) {
  const struct {
    std::string text, field;
  } cases[] = {
      {"", ""},
      {"1234567", "1234567"},
      {"12345678", "1234567"},
      {std::string(100000, 'x'), "xxxxxxx"},
      {"12\0004567"s, "12"},
  };
  for (const auto& each : cases) {
    MemoryChannel channel;
    channel.WriteString(each.text);
    char field[10] = "#########";
    EXPECT_TRUE(channel.ReadFixedString(field, 8));
    EXPECT_STREQ(field, each.field.c_str());
    EXPECT_EQ(field[8], '#') << "nothing behind the field changes";
  }
}

TEST(TypeSerializer, LeavesAFixedFieldAsItWasWhenTheStringFails) {
  for (const std::string& bytes : {""s, "\4\0\0\0a\0"s, LengthBytes(100001)}) {
    MemoryChannel channel(bytes);
    char field[8] = "before!";
    EXPECT_FALSE(channel.ReadFixedString(field, 8));
    EXPECT_STREQ(field, "before!");
  }
}

TEST(TypeFile, CarriesItemsFromOneObjectToAnother) {
  const testing::TemporaryFolder folder;
  const std::string path = folder / "items";
  CTypeFileOut out(path.c_str());
  out.WriteValue(std::int32_t{-7});
  out.WriteString("text");
  EXPECT_TRUE(out.Close());
  EXPECT_EQ(testing::ReadWholeFile(path), "\xF9\xFF\xFF\xFF\4\0\0\0t\0e\0x\0t\0"s);

  CTypeFileIn in(path.c_str());
  std::int32_t value = 0;
  in.ReadValue(value);
  std::string text;
  EXPECT_TRUE(in.ReadString(text));
  EXPECT_EQ(value, -7);
  EXPECT_EQ(text, "text");
  EXPECT_TRUE(in.IsGood());
  in.ReadValue(value);
  EXPECT_FALSE(in.IsGood()) << "the file has ended";
}

TEST(TypeFile, CountsAnItemCutAnywhereAsMissing) {
  const testing::TemporaryFolder folder;
  const std::string path = folder / "items";
  const std::string whole = "\1\0\0\0\2\0\0\0a\0b\0"s;
  for (std::size_t size = 0; size < whole.size(); ++size) {
    testing::WriteWholeFile(path, whole.substr(0, size));
    CTypeFileIn in(path.c_str());
    std::uint32_t value = 0;
    in.ReadValue(value);
    EXPECT_EQ(in.IsGood(), size >= 4) << size;
    std::string text;
    EXPECT_FALSE(in.ReadString(text)) << size;
    EXPECT_FALSE(in.IsGood()) << size;
  }
}

TEST(TypeFile, IsWithoutEffectWhenItCannotBeOpened) {
  const testing::TemporaryFolder folder;
  const std::string path = folder / "missing/items";
  CTypeFileOut out(path.c_str());
  out.WriteString("text");
  EXPECT_FALSE(out.IsGood());
  EXPECT_FALSE(out.Close());
  CTypeFileIn in(path.c_str());
  std::int32_t value = 5;
  in.ReadValue(value);
  EXPECT_FALSE(in.IsGood());
  EXPECT_EQ(value, 5);
  EXPECT_TRUE(std::filesystem::is_empty(folder.path));
}

TEST(TypeFile, TurnsBadInTheWrongDirection) {
  const testing::TemporaryFolder folder;
  const std::string path = folder / "items";
  CTypeFileOut out(path.c_str());
  char byte = 0;
  EXPECT_FALSE(out.Read(&byte, 1));
  EXPECT_FALSE(out.IsGood());
  CTypeFileIn in(path.c_str());
  in.Write(&byte, 1);
  EXPECT_FALSE(in.IsGood());
}

TEST(TypeFile, TellsAFullDiskAtTheLatestWhenItCloses) {
  CTypeFileOut out("/dev/full");
  out.WriteValue(1u);
  EXPECT_FALSE(out.Close());
  EXPECT_FALSE(out.IsGood());
}

}  // namespace
}  // namespace nvsupport
