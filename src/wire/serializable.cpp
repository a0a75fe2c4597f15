#include "wire/serializable.h"

#include <algorithm>
#include <array>
#include <limits>

namespace nvsupport {
namespace {

constexpr std::int64_t maxPosition = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t headerSize = 8;

// Positions are 32-bit; every place beyond them counts as the last one.
std::int32_t Position(std::int64_t offset) {
  return static_cast<std::int32_t>(std::min(offset, maxPosition));
}

std::int32_t CurrentPosition(std::FILE* file) {
  return Position(std::ftell(file));
}

// 32-bit numbers, least significant byte first.
template <std::size_t count>
bool ReadNumbers(std::FILE* file, std::array<std::uint32_t, count>& numbers) {
  std::array<std::uint8_t, 4 * count> bytes;
  if (std::fread(bytes.data(), bytes.size(), 1, file) != 1) return false;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    numbers[at / 4] = (at % 4 == 0 ? 0 : numbers[at / 4]) | std::uint32_t{bytes[at]} << (8 * (at % 4));
  }
  return true;
}

template <std::size_t count>
bool WriteNumbers(std::FILE* file, const std::array<std::uint32_t, count>& numbers) {
  std::array<std::uint8_t, 4 * count> bytes;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    bytes[at] = static_cast<std::uint8_t>(numbers[at / 4] >> (8 * (at % 4)));
  }
  return std::fwrite(bytes.data(), bytes.size(), 1, file) == 1;
}

CSerializable::Type* FindType(std::int32_t id) {
  CSerializable::Type* type = serializableTypes;
  while (type != nullptr && type->id != id) type = type->next;
  return type;
}

}  // namespace

CSerializable::Type::Type(std::int32_t typeId) : id(typeId), next(serializableTypes) {
  serializableTypes = this;
}

std::unique_ptr<CSerializable> ChunkReader::ReadChunk() {
  std::array<std::uint32_t, 2> header{};
  if (!ReadNumbers(file, header)) return nullptr;
  const auto [type, length] = header;
  const std::int32_t end = Position(std::int64_t{CurrentPosition(file)} + length);

  const std::int32_t* const outerEnd = chunkEnd;
  chunkEnd = &end;
  std::unique_ptr<CSerializable> object;
  if (++depth <= maxDepth) {
    if (CSerializable::Type* record = FindType(static_cast<std::int32_t>(type))) object = record->Create();
    if (object && !object->Read(*this)) object.reset();
  }
  --depth;
  if (CurrentPosition(file) < end) {
    std::fseek(file, end, SEEK_SET);
    skipped = 1;
  }
  chunkEnd = outerEnd;
  return object;
}

bool CSerializable::WriteChunk(ChunkWriter& writer) {
  const auto type = static_cast<std::uint32_t>(GetType());
  const std::int64_t start = std::ftell(writer.file);
  if (!WriteNumbers<2>(writer.file, {type, 0}) || !Write(writer)) return false;
  const std::int64_t end = std::ftell(writer.file);
  if (start < 0 || end > maxPosition) return false;
  const auto length = static_cast<std::uint32_t>(end - start - headerSize);
  if (std::fseek(writer.file, static_cast<long>(start), SEEK_SET) != 0) return false;
  if (!WriteNumbers<2>(writer.file, {type, length})) return false;
  return std::fseek(writer.file, static_cast<long>(end), SEEK_SET) == 0;
}

std::unique_ptr<CSerializable> CSerializableList::ListType::Create() {
  return std::make_unique<CSerializableList>();
}

bool CSerializableList::Read(ChunkReader& reader) {
  std::array<std::uint32_t, 1> count{};
  if (!ReadNumbers(reader.file, count)) return false;
  for (auto left = static_cast<std::int32_t>(count[0]); left > 0; --left) {
    if (std::unique_ptr<CSerializable> element = reader.ReadChunk()) {
      push_back(nullptr);  // room first: it may fail while the element still has its owner
      back() = element.release();
    } else if (std::feof(reader.file) || std::ferror(reader.file)) {
      break;  // whatever the count says, no further element can come
    }
  }
  return true;
}

bool CSerializableList::Write(ChunkWriter& writer) {
  if (!WriteNumbers<1>(writer.file, {static_cast<std::uint32_t>(size())})) return false;
  for (CSerializable* element : *this) {
    if (!element->WriteChunk(writer)) return false;
  }
  return true;
}

}  // namespace nvsupport
