// The typed byte channel over a local file, one class for each direction. A file that cannot be opened gives an object
// that is not good and on which every operation is without effect; so does use in the wrong direction.
#ifndef NVSUPPORT_WIRE_TYPE_FILE_H
#define NVSUPPORT_WIRE_TYPE_FILE_H

#include "platform/platform.h"
#include "wire/type_serializer.h"

namespace nvsupport {

class CTypeFileOut final : public CTypeSerializer {
 public:
  // Replaces a file of that name.
  explicit CTypeFileOut(const char* path);

  void Write(const void* data, std::int32_t size) override;
  bool Read(void* data, std::int32_t size) override;
  // Closes the file ahead of the destructor; true if everything that was written has arrived in it.
  bool Close();

 private:
  platform::FileStream file;
};

class CTypeFileIn final : public CTypeSerializer {
 public:
  explicit CTypeFileIn(const char* path);

  void Write(const void* data, std::int32_t size) override;
  bool Read(void* data, std::int32_t size) override;

 private:
  platform::FileStream file;
};

}  // namespace nvsupport

#endif
