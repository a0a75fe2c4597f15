#include "wire/type_file.h"

#include "platform/platform.h"

namespace nvsupport {

CTypeFileOut::CTypeFileOut(const char* path) : file(platform::OpenFileStream(path, "wb")) {
  mode = writing;
  good = file != nullptr ? 1 : 0;
}

CTypeFileOut::~CTypeFileOut() {
  Close();
}

void CTypeFileOut::Write(const void* data, std::int32_t size) {
  if (!IsGood()) return;
  good = file != nullptr && size > 0 && std::fwrite(data, static_cast<std::size_t>(size), 1, file) == 1 ? 1 : 0;
}

bool CTypeFileOut::Read(void*, std::int32_t) {
  good = 0;
  return false;
}

bool CTypeFileOut::Close() {
  if (file != nullptr && std::fclose(file) != 0) good = 0;  // bytes that the stream still held did not fit
  file = nullptr;
  return IsGood();
}

CTypeFileIn::CTypeFileIn(const char* path) : file(platform::OpenFileStream(path, "rb")) {
  mode = reading;
  good = file != nullptr ? 1 : 0;
}

CTypeFileIn::~CTypeFileIn() {
  if (file != nullptr) std::fclose(file);
}

void CTypeFileIn::Write(const void*, std::int32_t) {
  good = 0;
}

bool CTypeFileIn::Read(void* data, std::int32_t size) {
  if (!IsGood()) return false;
  good = size > 0 && std::fread(data, static_cast<std::size_t>(size), 1, file) == 1 ? 1 : 0;
  return IsGood();
}

}  // namespace nvsupport
