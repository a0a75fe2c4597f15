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

TEST(TypeSerializer, StaysBadOnceAReadBroughtNothing) {
  MemoryChannel channel(
      "\3\0\0\0\xE9\x7B"
      "b"s);
  std::string text;
  EXPECT_FALSE(channel.ReadString(text));
  EXPECT_EQ(text,
            "\xE9"
            "b")
      << "a unit counts by its low byte, even half a unit";
  EXPECT_FALSE(channel.IsGood());
  channel.bytes += "\5\0"s;
  std::uint32_t value = 0xFFFFFFFF;
  channel.ReadValue(value);
  EXPECT_EQ(value, 0xFFFF0005u) << "reads go on; only the bytes that came change the value";
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
  for (const std::string& bytes : {""s, "\4\0\0\0a\0"s, LengthBytes(100001)}) {
    MemoryChannel channel(bytes);
    char field[8] = "before!";
    EXPECT_FALSE(channel.ReadFixedString(field, 8));
    EXPECT_STREQ(field, "before!");
  }
}

TEST(TypeFile, CarriesItemsAndCountsOneCutAnywhereAsMissing) {
  const testing::TemporaryFolder folder;
  const std::string path = folder / "items";
  CTypeFileOut out(path.c_str());
  out.WriteValue(std::int32_t{-7});
  out.WriteString("text");
  EXPECT_TRUE(out.Close());
  const std::string whole = testing::ReadWholeFile(path);
  EXPECT_EQ(whole, "\xF9\xFF\xFF\xFF\4\0\0\0t\0e\0x\0t\0"s);
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    testing::WriteWholeFile(path, whole.substr(0, size));
    CTypeFileIn in(path.c_str());
    std::int32_t value = 0;
    in.ReadValue(value);
    EXPECT_EQ(in.IsGood() ? value : 0, size >= 4 ? -7 : 0) << size;
    std::string text;
    EXPECT_EQ(in.ReadString(text), size == whole.size()) << size;
    EXPECT_EQ(in.IsGood(), size == whole.size()) << size;
    in.ReadValue(value);
    EXPECT_FALSE(in.IsGood()) << "the file has ended";
  }
}

TEST(TypeFile, IsWithoutEffectWhenItCannotBeOpenedAndTurnsBadInTheWrongDirection) {
  const testing::TemporaryFolder folder;
  std::uint8_t byte = 5;
  for (const bool missing : {true, false}) {
    const std::string path = folder / (missing ? "missing/items" : "items");
    CTypeFileOut out(path.c_str());
    EXPECT_NE(out.IsGood(), missing);
    EXPECT_FALSE(out.Read(&byte, 1));
    EXPECT_FALSE(out.Close());
    CTypeFileIn in(path.c_str());
    EXPECT_NE(in.IsGood(), missing);
    in.Write(&byte, 1);
    in.ReadValue(byte);
    EXPECT_FALSE(in.IsGood());
    EXPECT_EQ(std::filesystem::exists(path), !missing);
  }
  EXPECT_EQ(byte, 5);
}

TEST(TypeFile, TellsAFullDiskAtTheLatestWhenItCloses) {
  CTypeFileOut out("/dev/full");
  out.WriteValue(1u);
  EXPECT_FALSE(out.Close());
  EXPECT_FALSE(out.IsGood());
}

}  // namespace
}  // namespace nvsupport
