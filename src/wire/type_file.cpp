#include "wire/type_file.h"

#include <cstdio>

namespace nvsupport {

CTypeFileOut::CTypeFileOut(const char* path) : file(platform::OpenFileStream(path, "wb")) {
  mode = writing;
  good = static_cast<bool>(file);
}

void CTypeFileOut::Write(const void* data, std::int32_t size) {
  if (!IsGood()) return;
  good = file && size > 0 && std::fwrite(data, static_cast<std::size_t>(size), 1, file.get()) == 1;
}

bool CTypeFileOut::Read(void*, std::int32_t) {
  good = false;
  return false;
}

bool CTypeFileOut::Close() {
  if (file && std::fclose(file.release()) != 0) good = false;  // bytes that the stream still held did not fit
  return IsGood();
}

CTypeFileIn::CTypeFileIn(const char* path) : file(platform::OpenFileStream(path, "rb")) {
  mode = reading;
  good = static_cast<bool>(file);
}

void CTypeFileIn::Write(const void*, std::int32_t) {
  good = false;
}

bool CTypeFileIn::Read(void* data, std::int32_t size) {
  if (!IsGood()) return false;
  good = size > 0 && std::fread(data, static_cast<std::size_t>(size), 1, file.get()) == 1;
  return IsGood();
}

}  // namespace nvsupport
