// Object files: chunks, lists, the registry of types, and files that lie about lengths, counts and depth.
#include "wire/serializable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

#include "platform/platform.h"
#include "support/documented_bytes.h"
#include "support/wire_items.h"

namespace nvsupport {
namespace {

using namespace std::string_literals;
using testing::DocumentedBytes;
using testing::Int;

constexpr std::int32_t numberId = 7;
constexpr std::int32_t refused = 13;  // the number that is not read

// Reads 4 bytes, however many more its chunk has.
class Number final : public CSerializable {
 public:
  explicit Number(std::int32_t initial = 0) : value(initial) {}
  bool Read(ChunkReader& reader) override {
    const bool fits = *reader.chunkEnd - std::ftell(reader.file) >= 4;
    return fits && std::fread(&value, 4, 1, reader.file) == 1 && value != refused;
  }
  bool Write(ChunkWriter& writer) override { return std::fwrite(&value, 4, 1, writer.file) == 1; }
  std::int32_t GetType() override { return numberId; }

  std::int32_t value;
};

struct NumberType final : CSerializable::Type {
  NumberType() : Type(numberId) {}
  std::unique_ptr<CSerializable> Create() override { return std::make_unique<Number>(); }
} numberType;

using File = platform::FileStream;

std::string Chunk(std::uint32_t type, const std::string& payload) {
  return Int(type) + Int(payload.size()) + payload;
}

// The numbers of an object, lists within lists in brackets. Deletes what it was read from.
std::string Take(CSerializable* object) {
  const std::unique_ptr<CSerializable> owner(object);
  if (const auto* number = dynamic_cast<Number*>(object)) return std::to_string(number->value) + " ";
  const auto* list = dynamic_cast<CSerializableList*>(object);
  if (list == nullptr) return "null ";
  std::string text = "[ ";
  for (CSerializable* element : *list) text += Take(element);
  return text + "] ";
}

// What the first chunk of a file holds, and whether something was stepped over.
std::string ReadOne(const std::string& bytes) {
  const File file(std::tmpfile());
  std::fwrite(bytes.data(), 1, bytes.size(), file.get());
  std::fseek(file.get(), 0, SEEK_SET);
  ChunkReader reader{file.get()};
  const std::string objects = Take(reader.ReadChunk().release());
  EXPECT_EQ(reader.chunkEnd, nullptr);
  return objects + (reader.skipped != 0 ? "skipped" : "");
}

// Writes an object to a file of its own, and reads all that came of it.
std::string BytesOf(CSerializable& object) {
  const File file(std::tmpfile());
  ChunkWriter writer{file.get()};
  EXPECT_TRUE(object.WriteChunk(writer));
  std::string bytes(static_cast<std::size_t>(std::ftell(file.get())), '\0');
  std::fseek(file.get(), 0, SEEK_SET);
  EXPECT_EQ(std::fread(bytes.data(), bytes.size(), 1, file.get()), 1u);
  return bytes;
}

TEST(ObjectFile, WritesListsThatItReads) {
  constexpr const char* document = NV_SOURCE_FOLDER "/docs/object_file_format.md";
  EXPECT_EQ(ReadOne(DocumentedBytes(document, "list")), "[ 42 [ -1 ] ] skipped");
  CSerializableList inner;
  EXPECT_EQ(BytesOf(inner), DocumentedBytes(document, "empty-list"));
  Number one(1);
  Number two(-2);
  inner.push_back(&two);
  CSerializableList outer;
  outer.insert(outer.end(), {&one, &inner, &one});
  EXPECT_EQ(ReadOne(BytesOf(outer)), "[ 1 [ -2 ] 1 ] ");
}

TEST(ObjectFile, ALostElementCostsItselfAlone) {
  const std::string good = Chunk(numberId, Int(5));
  const struct {
    const char* what;
    std::string bytes;
    const char* result;
  } cases[] = {
      {"no header", "\7\0\0"s, "null "},
      {"unknown, with payload", Chunk(999, "abc"), "null skipped"},
      {"reads less than its length", Chunk(numberId, Int(5) + "more"), "5 skipped"},
      {"has more than its length", Chunk(0, Int(2) + Int(numberId) + Int(2) + "ab" + good), "[ 5 ] skipped"},
      {"read fails before its end", Chunk(0, Int(2) + Chunk(numberId, Int(refused) + "x") + good), "[ 5 ] skipped"},
      {"count too high", Chunk(0, Int(9) + good + good), "[ 5 5 ] "},
      {"count below zero", Chunk(0, Int(-1) + good), "[ ] skipped"},
      {"no count", Chunk(0, "ab"), "null "},
      {"greatest length", Chunk(0, Int(2) + Int(999) + Int(0xFFFFFFFF) + good), "[ ] skipped"},
  };
  for (const auto& each : cases) EXPECT_EQ(ReadOne(each.bytes), each.result) << each.what;
}

TEST(ObjectFile, HostileCountsAndDepthsCostNoMoreThanTheirBytes) {
  std::string bytes;
  for (int level = 0; level < 100'000; ++level) bytes += Int(0) + Int(0x7FFFFFFF) + Int(0x7FFFFFFF);
  const std::string result = ReadOne(bytes);
  EXPECT_EQ(std::count(result.begin(), result.end(), '['), ChunkReader::maxDepth);
}

}  // namespace
}  // namespace nvsupport
