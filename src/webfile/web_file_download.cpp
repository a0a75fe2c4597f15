// Downloads: the body of a reply into a file.
#include <exception>
#include <string>

#include "base/process_wide.h"
#include "webfile/web_file_connection.h"

namespace nvsupport {
namespace {

constexpr char temporaryExtension[] = ".TMP";

// False where a download can only fail in the end: a folder or device has the name, or it leaves no room for the
// extension.
bool CanBecomeAFile(const std::string& name) {
  constexpr DWORD noFile = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE;
  const DWORD attributes = GetFileAttributesA(name.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & noFile) != 0) return false;
  return GetFileAttributesA((name + temporaryExtension).c_str()) != INVALID_FILE_ATTRIBUTES ||
         GetLastError() == ERROR_FILE_NOT_FOUND || GetLastError() == ERROR_PATH_NOT_FOUND;
}

// Null if the file cannot be written, or another download has it: it is not shared. A leftover of the same name is
// emptied.
platform::ObjectHandle CreateTemporaryFile(const std::string& name) {
  const HANDLE file =
      CreateFileA(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  return platform::ObjectHandle(file != INVALID_HANDLE_VALUE ? file : nullptr);
}

// What both exports do. One cannot call the other: a function of that name in the host would be called instead.
bool Download(const char* host, const char* path, const char* file, WebProgressCallback callback, void* callbackData,
              WebProgressCounters* counters) try {
  const base::Call call;
  if (!call || file == nullptr) return false;
  WebFileConnection connection(host, true, false);
  connection.SetCallback(callback, callbackData);
  connection.SetCounters(counters);
  return connection.DownloadFile(path, file);
} catch (const std::exception&) {
  return false;
}

}  // namespace

bool WebFileConnection::DownloadFile(const char* path, const char* file) {
  request.reset();
  return CanBecomeAFile(file) && OpenGet(path) && DownloadToFile(file);
}

bool WebFileConnection::DownloadToFile(const char* file) {
  if (StatusCode() >= firstFailureStatus) return false;
  const std::string temporary = std::string(file) + temporaryExtension;
  DeleteFileA(file);
  platform::ObjectHandle output = CreateTemporaryFile(temporary);
  if (!output) {
    request.reset();
    return false;
  }
  // Another download may have ended here before this one was alone.
  DeleteFileA(file);
  if (counters != nullptr) *counters = {.done = 0, .total = ContentLength()};
  const bool received = ReceiveInto(output.get());
  // That the system could not store everything may show only here.
  const bool closed = CloseHandle(output.release()) != FALSE;
  request.reset();
  if (received && closed && MoveFileA(temporary.c_str(), file)) return true;
  DeleteFileA(temporary.c_str());
  return false;
}

bool WebFileConnection::ReceiveInto(HANDLE file) try {
  char chunk[transferChunk];
  while (true) {
    DWORD got = 0;
    if (!InternetReadFile(request.get(), chunk, sizeof chunk, &got) || !GoesOn()) return false;
    if (got == 0) return true;
    DWORD written = 0;
    WriteFile(file, chunk, got, &written, nullptr);
    if (written < got) return false;
    if (counters != nullptr) counters->done += got;
  }
} catch (const std::exception&) {
  return false;  // out of memory: the caller takes the file away
}

}  // namespace nvsupport

bool NSDownloadWebFileProgress(const char* host, const char* path, const char* file, WebProgressCallback callback,
                               void* callbackData, WebProgressCounters* counters) {
  return nvsupport::Download(host, path, file, callback, callbackData, counters);
}

bool x77fc64c7(const char* host, const char* path, const char* file, WebProgressCallback callback, void* callbackData) {
  return nvsupport::Download(host, path, file, callback, callbackData, nullptr);
}
