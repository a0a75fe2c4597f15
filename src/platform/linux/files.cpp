// Files and folders over POSIX, and the handles of files.
#include "files.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include "blocked_signals.h"
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

// A write beyond the process's file size limit raises SIGXFSZ, which ends a host that does not expect it. While the
// object lives the signal is held back on this thread; one that came meanwhile is taken off again.
class NoFileSizeSignal {
 public:
  ~NoFileSizeSignal() {
    const timespec atOnce{};
    while (!hostsOwn && sigtimedwait(&signals, nullptr, &atOnce) < 0 && errno == EINTR) {
    }
  }

 private:
  static sigset_t FileSizeSignal() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGXFSZ);
    return set;
  }
  static bool IsPending() {
    sigset_t pending;
    return sigpending(&pending) == 0 && sigismember(&pending, SIGXFSZ) == 1;
  }

  const sigset_t signals = FileSizeSignal();
  const bool hostsOwn = IsPending();
  const platform::BlockedSignals blocked{signals};
};

// A file open for writing from its start. Small writes are gathered, so that a file which comes in many of them costs
// few calls of the system. A disk that is full thus shows in a later write, or when the file is closed.
class WrittenFile final : public HandleObject {
 public:
  void Open(Descriptor opened) { descriptor = std::move(opened); }
  ~WrittenFile() override { Close(); }

  bool Close() override {
    if (!descriptor) return true;
    Flush();
    // A child that the host has forked holds the file open, but has no part in the lock.
    flock(descriptor.get(), LOCK_UN);
    return close(descriptor.release()) == 0 && !lost;
  }

  // False once something could not be stored.
  bool Write(const char* data, std::size_t size) {
    if (size > gathered.size() - used) Flush();
    if (size > gathered.size()) {
      Store(data, size);
    } else {
      std::memcpy(gathered.data() + used, data, size);
      used += size;
    }
    return !lost;
  }

 private:
  void Flush() { Store(gathered.data(), std::exchange(used, 0)); }

  void Store(const char* data, std::size_t size) {
    const NoFileSizeSignal held;
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
  std::array<char, gatheredAtMost> gathered;  // taken and not yet stored
  std::size_t used = 0;
  bool lost = false;  // something that was taken could not be stored
};

ssize_t WriteToStream(void* file, const char* data, std::size_t size) {
  return static_cast<WrittenFile*>(file)->Write(data, size) ? static_cast<ssize_t>(size) : 0;
}
int CloseStream(void* file) {
  const std::unique_ptr<WrittenFile> closing(static_cast<WrittenFile*>(file));
  return closing->Close() ? 0 : EOF;
}

// A file, made if the flags say so. None for a folder, pipe or device, which is not even opened: that may have
// effects, or wait for somebody at the other end.
Descriptor OpenRegularFile(const NativePath& path, int flags, mode_t rights = 0) {
  struct stat status {};
  if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) return {};
  Descriptor file(open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, rights));
  if (file && (fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))) file.reset();
  return file;
}

// How a file is opened without sharing: by a lock that goes with the descriptor. False if another has the file open in
// that way. A file system that knows no locks lets all have it.
bool Lock(const Descriptor& file, int kind) {
  return flock(file.get(), kind | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

bool IsStillAt(const NativePath& path, const Descriptor& file) {
  struct stat atPath {};
  struct stat opened {};
  return lstat(path.c_str(), &atPath) == 0 && fstat(file.get(), &opened) == 0 && atPath.st_ino == opened.st_ino &&
         atPath.st_dev == opened.st_dev;
}

// Keeps a file from those who would begin to write in it, as long as the descriptor is open. False if it is no file or
// another has it open without sharing; one that may not be opened is taken for nobody's.
bool Hold(const NativePath& path, Descriptor& file) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  file = OpenRegularFile(path, O_RDONLY | O_NOFOLLOW);
  return !file || (Lock(file, LOCK_SH) && IsStillAt(path, file));
}

bool IsLink(const NativePath& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

bool Exists(const NativePath& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0;
}

}  // namespace

namespace platform {

NativePath::NativePath(const char* path) {
  const std::size_t length = path != nullptr ? strnlen(path, sizeof text) : 0;
  char* const end = length < sizeof text ? std::replace_copy(path, path + length, text, '\\', '/') : text;
  *end = '\0';
}

FileStream OpenFileStream(const char* path, const char* mode) {
  const NativePath native(path);
  if (mode[0] != 'w') {
    Descriptor file = OpenRegularFile(native, O_RDONLY);
    FileStream stream(file ? fdopen(file.get(), mode) : nullptr);
    if (stream) static_cast<void>(file.release());  // the stream's from here on
    return stream;
  }
  std::unique_ptr<WrittenFile> written(new (std::nothrow) WrittenFile);
  Descriptor file = OpenRegularFile(native, O_WRONLY | O_CREAT, ownersFile);
  if (!written || !file) return {};
  FileStream stream(fopencookie(written.get(), mode, {nullptr, WriteToStream, nullptr, CloseStream}));
  if (!stream) return {};
  // A file that stood there before may be open to others, whom its new content does not concern. Some file systems
  // keep no such rights, and their files are written all the same.
  fchmod(file.get(), ownersFile);
  const bool emptied = ftruncate(file.get(), 0) == 0;
  written.release()->Open(std::move(file));
  if (!emptied) stream.reset();
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
  const NativePath native(path);
  Descriptor file;
  return (IsLink(native) || Hold(native, file)) && unlink(native.c_str()) == 0;
}

BOOL MoveFileA(LPCSTR from, LPCSTR to) {
  const NativePath source(from);
  const NativePath target(to);
  Descriptor file;
  if (!Hold(source, file)) return FALSE;
  if (renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) return TRUE;
  if (errno != EINVAL && errno != ENOSYS) return FALSE;
  // A file system without that flag, as some network ones.
  return !Exists(target) && std::rename(source.c_str(), target.c_str()) == 0;
}

HANDLE CreateFileA(LPCSTR path, DWORD, DWORD, struct SECURITY_ATTRIBUTES*, DWORD, DWORD, HANDLE) {
  const NativePath native(path);
  std::unique_ptr<WrittenFile> written(new (std::nothrow) WrittenFile);
  if (!written) return INVALID_HANDLE_VALUE;
  Descriptor file = OpenRegularFile(native, O_WRONLY | O_CREAT | O_NOFOLLOW, anyonesFile);
  // Whoever had it may have given it another name before it was locked.
  if (!file || !Lock(file, LOCK_EX) || !IsStillAt(native, file)) return INVALID_HANDLE_VALUE;
  if (ftruncate(file.get(), 0) != 0) return INVALID_HANDLE_VALUE;
  written->Open(std::move(file));
  return static_cast<HandleObject*>(written.release());
}

BOOL WriteFile(HANDLE handle, LPCVOID data, DWORD size, LPDWORD written, struct OVERLAPPED*) {
  *written = 0;
  if (handle == nullptr || handle == INVALID_HANDLE_VALUE) return FALSE;
  auto* file = dynamic_cast<WrittenFile*>(static_cast<HandleObject*>(handle));
  if (file == nullptr || !file->Write(static_cast<const char*>(data), size)) return FALSE;
  *written = size;
  return TRUE;
}

BOOL CloseHandle(HANDLE handle) {
  if (handle == nullptr || handle == INVALID_HANDLE_VALUE) return FALSE;
  const std::unique_ptr<HandleObject> object(static_cast<HandleObject*>(handle));
  return object->Close();
}

DWORD GetCurrentProcessId() {
  return static_cast<DWORD>(getpid());
}
