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
constexpr std::int32_t refused = 13;  // the number that is neither read nor written
int livingNumbers = 0;

// Reads 4 bytes however long its chunk is.
class Number final : public CSerializable {
 public:
  explicit Number(std::int32_t initial = 0) : value(initial) { ++livingNumbers; }
  ~Number() override { --livingNumbers; }
  bool Read(ChunkReader& reader) override {
    room = *reader.chunkEnd - std::ftell(reader.file);
    return std::fread(&value, 4, 1, reader.file) == 1 && value != refused;
  }
  bool Write(ChunkWriter& writer) override { return value != refused && std::fwrite(&value, 4, 1, writer.file) == 1; }
  std::int32_t GetType() override { return numberId; }

  std::int32_t value;
  long room = 0;  // bytes from here to the end of its chunk
};

template <typename Class>
struct NumberType final : CSerializable::Type {
  NumberType() : Type(numberId) {}
  std::unique_ptr<CSerializable> Create() override { return std::make_unique<Class>(); }
};
// Of two records with one id the later one counts, so no test sees a list for a number.
NumberType<CSerializableList> earlier;
NumberType<Number> later;

using File = platform::FileStream;

std::string BytesOf(std::FILE* file) {
  std::rewind(file);
  std::string bytes;
  for (int byte = std::getc(file); byte != EOF; byte = std::getc(file)) bytes += static_cast<char>(byte);
  return bytes;
}

std::string Chunk(std::uint32_t type, const std::string& payload) {
  return Int(type) + Int(payload.size()) + payload;
}

// The numbers of an object, with the room that they had if it was not 4; lists within lists in brackets. Deletes what
// it was read from.
std::string Take(CSerializable* object) {
  const std::unique_ptr<CSerializable> owner(object);
  if (const auto* number = dynamic_cast<Number*>(object)) {
    return std::to_string(number->value) + (number->room != 4 ? "/" + std::to_string(number->room) : "") + " ";
  }
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
  std::rewind(file.get());
  ChunkReader reader{file.get()};
  const std::string objects = Take(reader.ReadChunk().release());
  EXPECT_EQ(reader.chunkEnd, nullptr);
  return objects + (reader.skipped != 0 ? "skipped" : "");
}

TEST(ObjectFile, WritesAndReadsTheExamplesOfItsDocument) {
  constexpr const char* document = NV_SOURCE_FOLDER "/docs/object_file_format.md";
  CSerializableList empty;
  const File file(std::tmpfile());
  ChunkWriter writer{file.get()};
  EXPECT_TRUE(empty.WriteChunk(writer));
  EXPECT_EQ(BytesOf(file.get()), DocumentedBytes(document, "empty-list"));
  EXPECT_EQ(ReadOne(DocumentedBytes(document, "list")), "[ 42 [ -1 ] ] skipped");
}

TEST(ObjectFile, ListsComeBackAsTheyWereWrittenAndAFailedWriteKeepsTheLengthZero) {
  Number one(1);
  Number two(-2);
  CSerializableList inner;
  inner.push_back(&two);
  CSerializableList outer;
  outer.insert(outer.end(), {&one, &inner, &one});
  const File file(std::tmpfile());
  ChunkWriter writer{file.get()};
  EXPECT_TRUE(outer.WriteChunk(writer));
  const std::string bytes = BytesOf(file.get());
  EXPECT_EQ(ReadOne(bytes), "[ 1 [ -2 ] 1 ] ");

  two.value = refused;
  EXPECT_FALSE(outer.WriteChunk(writer)) << "at the end of the file";
  const std::string begun = Int(0) + Int(0) + Int(3) + Chunk(numberId, Int(1)) + Int(0) + Int(0) + Int(1);
  EXPECT_EQ(BytesOf(file.get()), bytes + begun + Int(numberId) + Int(0));

  const File full(std::fopen("/dev/full", "w"));
  std::setvbuf(full.get(), nullptr, _IONBF, 0);
  ChunkWriter toFull{full.get()};
  EXPECT_FALSE(one.WriteChunk(toFull));
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
      {"the id of the base class", Chunk(0xFFFFFFFF, ""), "null "},
      {"reads less than its length", Chunk(numberId, Int(5) + "more"), "5/8 skipped"},
      {"read fails before its end", Chunk(0, Int(2) + Chunk(numberId, Int(refused) + "x") + good), "[ 5 ] skipped"},
      {"count too high", Chunk(0, Int(9) + good + good), "[ 5 5 ] "},
      {"count below zero", Chunk(0, Int(-1) + good), "[ ] skipped"},
      {"no count", Chunk(0, "ab"), "null "},
      {"greatest length", Int(numberId) + Int(0xFFFFFFFF) + Int(5), "5/2147483639 skipped"},
      {"greatest length in a list", Chunk(0, Int(2) + Int(999) + Int(0x7FFFFFFF) + good), "[ ] skipped"},
  };
  for (const auto& each : cases) EXPECT_EQ(ReadOne(each.bytes), each.result) << each.what;
  EXPECT_EQ(livingNumbers, 0);
}

TEST(ObjectFile, HostileCountsAndDepthsCostNoMoreThanTheirBytes) {
  std::string bytes;
  for (int level = 0; level < 100'000; ++level) bytes += Int(0) + Int(0x7FFFFFFF) + Int(0x7FFFFFFF);
  const std::string result = ReadOne(bytes);
  EXPECT_EQ(std::count(result.begin(), result.end(), '['), ChunkReader::maxDepth);
}

}  // namespace
}  // namespace nvsupport
