// Object files: chunks, lists, the registry of types, and files that lie about lengths, counts and depth.
#include "wire/serializable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "storage/scoped_handle.h"
#include "support/documented_bytes.h"

namespace nvsupport {
namespace {

using namespace std::string_literals;

constexpr std::int32_t numberId = 7;
int livingNumbers = 0;

// Reads 4 bytes however long its chunk is; refuses the number 13 in both directions.
class Number final : public CSerializable {
 public:
  explicit Number(std::int32_t initial = 0) : value(initial) { ++livingNumbers; }
  ~Number() override { --livingNumbers; }
  bool Read(ChunkReader& reader) override {
    endSeen = *reader.chunkEnd;
    return std::fread(&value, 4, 1, reader.file) == 1 && value != 13;
  }
  bool Write(ChunkWriter& writer) override { return value != 13 && std::fwrite(&value, 4, 1, writer.file) == 1; }
  std::int32_t GetType() override { return numberId; }

  std::int32_t value;
  std::int32_t endSeen = 0;
};

class NumberType final : public CSerializable::Type {
 public:
  NumberType() : Type(numberId) {}
  std::unique_ptr<CSerializable> Create() override { return std::make_unique<Number>(); }
} numberType;

using File = ScopedHandle<std::FILE*, std::fclose>;

File FileOf(const std::string& bytes) {
  File file(std::tmpfile());
  std::fwrite(bytes.data(), 1, bytes.size(), file.get());
  std::rewind(file.get());
  return file;
}

std::string BytesOf(std::FILE* file) {
  std::rewind(file);
  std::string bytes;
  for (int byte = std::getc(file); byte != EOF; byte = std::getc(file)) bytes += static_cast<char>(byte);
  return bytes;
}

std::string Word(std::uint32_t value) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(value >> shift);
  return bytes;
}

std::string Chunk(std::uint32_t type, const std::string& payload) {
  return Word(type) + Word(static_cast<std::uint32_t>(payload.size())) + payload;
}

// The numbers of an object, lists within lists in brackets. Deletes what it was read from.
std::string Take(CSerializable* object) {
  const std::unique_ptr<CSerializable> owner(object);
  if (const auto* number = dynamic_cast<Number*>(object)) return std::to_string(number->value) + " ";
  const auto* list = dynamic_cast<CSerializableList*>(object);
  if (list == nullptr) return "null";
  std::string text = "[ ";
  for (CSerializable* element : *list) text += Take(element);
  return text + "] ";
}

struct Result {
  std::string objects;
  int skipped;
  long position;
};

Result ReadOne(const std::string& bytes) {
  const File file = FileOf(bytes);
  ChunkReader reader{file.get()};
  std::string objects = Take(reader.ReadChunk().release());
  EXPECT_EQ(reader.chunkEnd, nullptr);
  return {objects, reader.skipped, std::ftell(file.get())};
}

TEST(ObjectFile, WritesAndReadsTheExamplesOfItsDocument) {
  constexpr const char* document = NV_SOURCE_FOLDER "/docs/object_file_format.md";
  CSerializableList empty;
  const File file = FileOf("");
  ChunkWriter writer{file.get()};
  EXPECT_TRUE(empty.WriteChunk(writer));
  EXPECT_EQ(BytesOf(file.get()), testing::DocumentedBytes(document, "empty-list"));

  const std::string example = testing::DocumentedBytes(document, "list");
  const Result result = ReadOne(example);
  EXPECT_EQ(result.objects, "[ 42 [ -1 ] ] ");
  EXPECT_EQ(result.skipped, 1);
  EXPECT_EQ(result.position, static_cast<long>(example.size()));
}

TEST(ObjectFile, ListsComeBackAsTheyWereWritten) {
  Number one(1);
  Number two(-2);
  CSerializableList inner;
  inner.push_back(&two);
  CSerializableList outer;
  outer.push_back(&one);
  outer.push_back(&inner);
  outer.push_back(&one);
  const File file = FileOf("");
  ChunkWriter writer{file.get()};
  ASSERT_TRUE(outer.WriteChunk(writer));
  ASSERT_TRUE(one.WriteChunk(writer));
  const std::string bytes = BytesOf(file.get());
  const Result result = ReadOne(bytes);
  EXPECT_EQ(result.objects, "[ 1 [ -2 ] 1 ] ");
  EXPECT_EQ(result.skipped, 0);
  EXPECT_EQ(result.position, static_cast<long>(bytes.size()) - 12);
}

TEST(ObjectFile, ALostElementCostsItselfAlone) {
  const std::string good = Chunk(numberId, Word(5));
  const struct {
    const char* what;
    std::string bytes;
    const char* objects;
    int skipped;
  } cases[] = {
      {"no header", "\7\0\0"s, "null", 0},
      {"unknown, empty", Chunk(999, ""), "null", 0},
      {"unknown, with payload", Chunk(999, "abc"), "null", 1},
      {"the id of the base class", Chunk(0xFFFFFFFF, ""), "null", 0},
      {"reads less than its length", Chunk(numberId, Word(5) + "more"), "5 ", 1},
      {"read fails at its end", Chunk(numberId, Word(13)), "null", 0},
      {"read fails before its end", Chunk(0, Word(2) + Chunk(numberId, Word(13) + "x") + good), "[ 5 ] ", 1},
      {"count too high", Chunk(0, Word(9) + good + good), "[ 5 5 ] ", 0},
      {"count below zero", Chunk(0, Word(0xFFFFFFFF) + good), "[ ] ", 1},
      {"no count", Chunk(0, "ab"), "null", 0},
      {"greatest length", Word(999) + Word(0xFFFFFFFF), "null", 1},
      {"greatest length of a number", Word(numberId) + Word(0xFFFFFFFF) + Word(5), "5 ", 1},
      {"greatest length in a list", Chunk(0, Word(2) + Word(999) + Word(0x7FFFFFFF) + good), "[ ] ", 1},
  };
  for (const auto& each : cases) {
    const Result result = ReadOne(each.bytes);
    EXPECT_EQ(result.objects, each.objects) << each.what;
    EXPECT_EQ(result.skipped, each.skipped) << each.what;
  }
  EXPECT_EQ(livingNumbers, 0);
}

TEST(ObjectFile, AnObjectSeesWhereItsChunkEnds) {
  const File file = FileOf(Chunk(numberId, Word(5) + "abc"));
  const std::unique_ptr<CSerializable> object = ChunkReader{file.get()}.ReadChunk();
  EXPECT_EQ(dynamic_cast<Number&>(*object).endSeen, 15);
}

TEST(ObjectFile, TheTypeRegisteredLastCounts) {
  struct Other final : CSerializable::Type {
    Other() : Type(numberId) {}
    std::unique_ptr<CSerializable> Create() override { return std::make_unique<CSerializableList>(); }
  };
  CSerializable::Type* const before = serializableTypes;
  {
    const Other other;
    EXPECT_EQ(ReadOne(Chunk(numberId, Word(0))).objects, "[ ] ");
  }
  serializableTypes = before;
}

TEST(ObjectFile, AFailedWriteKeepsTheLengthZero) {
  Number good(5);
  Number refused(13);
  CSerializableList list;
  list.push_back(&good);
  list.push_back(&refused);
  const File file = FileOf("");
  ChunkWriter writer{file.get()};
  EXPECT_FALSE(list.WriteChunk(writer));
  EXPECT_EQ(BytesOf(file.get()), Word(0) + Word(0) + Word(2) + Chunk(numberId, Word(5)) + Word(numberId) + Word(0));
  const File full(std::fopen("/dev/full", "w"));
  std::setvbuf(full.get(), nullptr, _IONBF, 0);
  ChunkWriter toFull{full.get()};
  EXPECT_FALSE(good.WriteChunk(toFull));
}

TEST(ObjectFile, HostileCountsAndDepthsCostNoMoreThanTheirBytes) {
  std::string bytes;
  constexpr int levels = 100'000;
  for (int level = 0; level < levels; ++level) bytes += Word(0) + Word(0x7FFFFFFF) + Word(0x7FFFFFFF);
  const auto start = std::chrono::steady_clock::now();
  const Result result = ReadOne(bytes);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
  EXPECT_EQ(result.skipped, 1);
  EXPECT_EQ(std::count(result.objects.begin(), result.objects.end(), '['), ChunkReader::maxDepth);
}

TEST(ObjectFile, RandomFilesAreReadToTheirEnd) {
  std::mt19937 random(23);
  for (int round = 0; round < 2000; ++round) {
    std::string bytes =
        Word(0) + Word(static_cast<std::uint32_t>(random())) + Word(random() % 2 != 0 ? 100 : 0x7FFFFFFF);
    for (auto words = 1 + random() % 60; words > 0; --words) {
      const std::uint32_t choices[] = {0, 0, numberId, 4, 8, 12, 13, static_cast<std::uint32_t>(random())};
      bytes += Word(choices[random() % std::size(choices)]);
    }
    bytes.resize(bytes.size() - random() % 4);
    EXPECT_EQ(ReadOne(bytes).objects.front(), '[');
  }
  EXPECT_EQ(livingNumbers, 0);
}

}  // namespace
}  // namespace nvsupport
