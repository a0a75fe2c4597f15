// Files and folders over POSIX, and the handles of files.
#include "files.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include "handle.h"
#include "native_path.h"
#include "platform/platform.h"

namespace {

using platform::HandleObject;
using platform::NativePath;
using Descriptor = base::ScopedHandle<int, &close, -1>;

constexpr mode_t ownersFolder = 0700;
constexpr mode_t ownersFile = 0600;
constexpr mode_t anyonesFile = 0666;  // less the user's mask

constexpr std::size_t gatheredAtMost = std::size_t{64} * 1024;  // bytes

// A file open for writing from its start. Small writes are gathered, so that a file which comes in many of them costs
// few calls of the system. A disk that is full thus shows in a later write, or when the file is closed.
class WrittenFile final : public HandleObject {
 public:
  explicit WrittenFile(Descriptor opened) : descriptor(std::move(opened)) {
    rlimit limit{};
    if (getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY) room = limit.rlim_cur;
  }
  ~WrittenFile() override { Close(); }

  bool Close() override {
    if (!descriptor) return true;
    const bool stored = Flush();
    const bool closed = close(descriptor.release()) == 0;
    return stored && closed;
  }

  // Returns the bytes taken: fewer than asked for at the file size limit, none once something could not be stored.
  std::size_t Write(const char* data, std::size_t size) {
    const auto taken = static_cast<std::size_t>(std::min<std::uint64_t>(size, room));
    if (gathered.size() + taken > gatheredAtMost) Flush();
    if (taken > gatheredAtMost) {
      Store(data, taken);
    } else {
      gathered.append(data, taken);
    }
    if (lost) return 0;
    room -= taken;
    return taken;
  }

 private:
  // True if all that was taken so far is stored.
  bool Flush() {
    Store(gathered.data(), gathered.size());
    gathered.clear();
    return !lost;
  }

  void Store(const char* data, std::size_t size) {
    while (size > 0 && !lost) {
      const ssize_t written = write(descriptor.get(), data, size);
      if (written < 0 && errno == EINTR) continue;
      lost = written <= 0;
      if (lost) return;
      data += written;
      size -= static_cast<std::size_t>(written);
    }
  }

  Descriptor descriptor;
  // Bytes up to the process's file size limit. A write that starts at the limit would raise SIGXFSZ, which ends a
  // host that does not expect it.
  std::uint64_t room = UINT64_MAX;
  std::string gathered;  // taken and not yet stored
  bool lost = false;     // something that was taken could not be stored
};

bool Exists(const char* path) {
  struct stat status {};
  return lstat(path, &status) == 0;
}

}  // namespace

namespace platform {

std::string NativePath(const char* path) {
  std::string native = path != nullptr ? path : "";
  std::replace(native.begin(), native.end(), '\\', '/');
  return native;
}

FileStream OpenFileStream(const char* path, const char* mode) {
  const bool writing = mode[0] == 'w';
  // Without waiting: a pipe in the place of the file would hold the host up until somebody opens its other end.
  const int flags = (writing ? O_WRONLY | O_CREAT | O_TRUNC : O_RDONLY) | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  Descriptor descriptor(open(NativePath(path).c_str(), flags, ownersFile));
  if (!descriptor) return {};
  struct stat status {};
  // Only files are read: folders open too, and a pipe, a terminal or a device may never come to an end.
  const bool usable =
      fstat(descriptor.get(), &status) == 0 && (S_ISREG(status.st_mode) || (writing && S_ISCHR(status.st_mode)));
  FileStream stream(usable ? fdopen(descriptor.get(), mode) : nullptr);
  if (!stream) return {};
  const int opened = descriptor.release();  // the stream's from here on
  // A file that stood there before may be open to others, whom its new content does not concern. Some file systems
  // keep no such rights, and their files are written all the same.
  if (writing && S_ISREG(status.st_mode)) fchmod(opened, ownersFile);
  return stream;
}

}  // namespace platform

DWORD GetFileAttributesA(LPCSTR path) {
  struct stat status {};
  if (stat(NativePath(path).c_str(), &status) != 0) return INVALID_FILE_ATTRIBUTES;
  return S_ISDIR(status.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
}

BOOL CreateDirectoryA(LPCSTR path, struct SECURITY_ATTRIBUTES*) {
  return mkdir(NativePath(path).c_str(), ownersFolder) == 0;
}

BOOL DeleteFileA(LPCSTR path) {
  return unlink(NativePath(path).c_str()) == 0;
}

BOOL MoveFileA(LPCSTR from, LPCSTR to) {
  const std::string source = NativePath(from);
  const std::string target = NativePath(to);
  if (renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) return TRUE;
  if (errno != EINVAL && errno != ENOSYS) return FALSE;
  // A file system without that flag, as some network ones.
  return !Exists(target.c_str()) && std::rename(source.c_str(), target.c_str()) == 0;
}

HANDLE CreateFileA(LPCSTR path, DWORD, DWORD, struct SECURITY_ATTRIBUTES*, DWORD, DWORD, HANDLE) {
  // Without waiting, as streams are opened.
  constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  Descriptor descriptor(open(NativePath(path).c_str(), flags, anyonesFile));
  if (!descriptor) return INVALID_HANDLE_VALUE;
  return static_cast<HandleObject*>(new WrittenFile(std::move(descriptor)));
}

BOOL WriteFile(HANDLE handle, LPCVOID data, DWORD size, LPDWORD written, struct OVERLAPPED*) {
  *written = 0;
  if (handle == nullptr || handle == INVALID_HANDLE_VALUE) return FALSE;
  auto* file = dynamic_cast<WrittenFile*>(static_cast<HandleObject*>(handle));
  if (file == nullptr) return FALSE;
  *written = static_cast<DWORD>(file->Write(static_cast<const char*>(data), size));
  return *written == size;
}

BOOL CloseHandle(HANDLE handle) {
  if (handle == nullptr || handle == INVALID_HANDLE_VALUE) return FALSE;
  const std::unique_ptr<HandleObject> object(static_cast<HandleObject*>(handle));
  return object->Close();
}

DWORD GetCurrentProcessId() {
  return static_cast<DWORD>(getpid());
}
