// Objects kept in a file as typed chunks, each with its length, so that a reader can step over objects of classes
// that it lacks. A class registers by a CSerializable::Type record. docs/object_file_format.md describes the bytes.
#ifndef NVSUPPORT_WIRE_SERIALIZABLE_H
#define NVSUPPORT_WIRE_SERIALIZABLE_H

#include <cstdint>
#include <cstdio>
#include <list>
#include <memory>

namespace nvsupport {

class CSerializable;

// Reads chunks from a stream that the caller opened in binary mode and closes.
struct ChunkReader {
  // Chunks within chunks: far more than a sane file has, and few enough for any thread's stack. One that lies deeper
  // counts as one whose read failed.
  static constexpr int maxDepth = 2000;

  std::FILE* file = nullptr;
  std::uint8_t skipped = 0;                // set once bytes were stepped over; never cleared here
  const std::int32_t* chunkEnd = nullptr;  // end position of the chunk being read, for the object's Read to look at
  int depth = 0;                           // chunks that are being read, one within the other

  // The next chunk's object; null when the file ends, the type is unknown or the object's Read failed. In the last
  // two cases the stream stands at the chunk's end.
  std::unique_ptr<CSerializable> ReadChunk();
};

// The stream that chunks are written to, opened in binary mode and seekable; the caller's.
struct ChunkWriter {
  std::FILE* file = nullptr;
};

class CSerializable {
 public:
  class Type;

  virtual ~CSerializable() = default;
  // The payload of the object's chunk; false when it cannot be read or written whole.
  virtual bool Read(ChunkReader& reader) = 0;
  virtual bool Write(ChunkWriter& writer) = 0;
  virtual std::int32_t GetType() { return -1; }

  // True when the whole chunk stands in the file. A chunk whose payload failed keeps the length 0.
  bool WriteChunk(ChunkWriter& writer);
};

// The factory record of one class: a static object that joins the registry when it is constructed, which is while
// the library loads, and never leaves it. Of two records with one id the later one counts.
class CSerializable::Type {
 public:
  explicit Type(std::int32_t typeId);
  Type(const Type&) = delete;
  Type& operator=(const Type&) = delete;
  virtual std::unique_ptr<CSerializable> Create() = 0;

  const std::int32_t id;
  Type* const next;

 protected:
  ~Type() = default;
};

// Head of the registry, null while it is empty.
extern CSerializable::Type* serializableTypes;

// A list of objects. It does not own them: the owner of the list deletes the elements.
class CSerializableList : public std::list<CSerializable*>, public CSerializable {
 public:
  class ListType final : public Type {
   public:
    ListType() : Type(typeId) {}
    std::unique_ptr<CSerializable> Create() override;
  };
  static constexpr std::int32_t typeId = 0;
  static ListType cType;

  // Appends the elements that can be read; those lost show in the reader's `skipped` alone.
  bool Read(ChunkReader& reader) override;
  bool Write(ChunkWriter& writer) override;
  std::int32_t GetType() override { return typeId; }
};

}  // namespace nvsupport

#endif
