// Files and folders over POSIX, and the handles of files that are written.
#include "files/files.h"

#include <fcntl.h>
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
#include "files/native_path.h"
#include "handle_object.h"
#include "platform/platform.h"
#include "trace.h"

namespace {

using platform::FileStream;
using platform::HandleObject;
using platform::NativePath;
using platform::Trace;
using platform::TraceArea;
using Descriptor = base::ScopedHandle<int, &close, -1>;

constexpr mode_t ownersFolder = 0700;
constexpr mode_t ownersFile = 0600;
constexpr mode_t anyonesFile = 0666;  // less the user's mask

constexpr std::size_t gatheredAtMost = std::size_t{64} * 1024;  // bytes

// The file that this thread has written without sharing it and closed, locked until the thread renames or deletes a
// file, which it does next: nobody else may begin to write in it in between. A plain number that each thread has from
// its start; an owner's destructor would keep the module from being unloaded.
[[gnu::tls_model("initial-exec")]] thread_local int keptLocked = -1;

// Sets the lock of an open file (F_WRLCK, F_RDLCK or F_UNLCK), in one step from the one it has.
bool SetLock(int file, short kind) {
  struct flock whole{};
  whole.l_type = kind;
  return fcntl(file, F_OFD_SETLK, &whole) == 0;
}

void UnlockKept() {
  if (keptLocked == -1) return;
  // A child that the host has forked holds the file open, but has no part in the lock.
  SetLock(keptLocked, F_UNLCK);
  close(std::exchange(keptLocked, -1));
}

// A file open for writing from its start. Small writes are gathered, so that a file which comes in many of them costs
// few calls of the system. A disk that is full thus shows in a later write, or when the file is closed.
class WrittenFile final : public HandleObject {
 public:
  void Open(Descriptor opened, bool isLocked) {
    descriptor = std::move(opened);
    locked = isLocked;
  }
  ~WrittenFile() override { Close(); }

  bool Close() override {
    if (!descriptor) return true;
    Flush();
    if (locked) KeepLocked();
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
  void KeepLocked() {
    UnlockKept();
    // Who renames or deletes the file takes a shared lock, which this one must not refuse.
    SetLock(descriptor.get(), F_RDLCK);
    keptLocked = fcntl(descriptor.get(), F_DUPFD_CLOEXEC, 0);
    if (keptLocked == -1) SetLock(descriptor.get(), F_UNLCK);
  }

  void Flush() { Store(gathered.data(), std::exchange(used, 0)); }

  void Store(const char* data, std::size_t size) {
    const platform::NoSignalOfWrite held;
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
  bool locked = false;
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
// effects, or wait for a process at the other end.
Descriptor OpenRegularFile(const NativePath& path, int flags, mode_t rights = 0) {
  struct stat status{};
  if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) return {};
  Descriptor file(open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, rights));
  // Something else may have taken its place meanwhile: reading that does no harm, but it must not be written to.
  if ((flags & O_ACCMODE) == O_RDONLY) return file;
  if (file && (fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))) file.reset();
  return file;
}

// Opens a file without sharing: by a lock that ends with the descriptor. False if another has the file open in that
// way. On a file system without locks everyone gets the file.
bool Lock(const Descriptor& file, short kind) {
  return SetLock(file.get(), kind) || (errno != EAGAIN && errno != EACCES);
}

bool IsStillAt(const NativePath& path, const Descriptor& file) {
  struct stat atPath{};
  struct stat opened{};
  return lstat(path.c_str(), &atPath) == 0 && fstat(file.get(), &opened) == 0 && atPath.st_ino == opened.st_ino &&
         atPath.st_dev == opened.st_dev;
}

// Keeps a file from those who would begin to write in it, as long as the descriptor is open. False if it is no file or
// another has it open without sharing; a file that may not be opened counts as free.
bool Hold(const NativePath& path, Descriptor& file) {
  struct stat status{};
  if (lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
  file = OpenRegularFile(path, O_RDONLY | O_NOFOLLOW);
  return !file || (Lock(file, F_RDLCK) && IsStillAt(path, file));
}

bool IsLink(const NativePath& path) {
  struct stat status{};
  return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

bool Exists(const NativePath& path) {
  struct stat status{};
  return lstat(path.c_str(), &status) == 0;
}

bool Move(const NativePath& source, const NativePath& target) {
  Descriptor file;
  if (!Hold(source, file)) return false;
  if (renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
  // A file system without that flag, as some network ones.
  return !Exists(target) && std::rename(source.c_str(), target.c_str()) == 0;
}

// Null if the file may not be read and written, as its locks need, or another has it open.
std::unique_ptr<WrittenFile> Create(const NativePath& path) {
  std::unique_ptr<WrittenFile> written(new (std::nothrow) WrittenFile);
  if (!written) return nullptr;
  Descriptor file = OpenRegularFile(path, O_RDWR | O_CREAT | O_NOFOLLOW, anyonesFile);
  // Its former owner may have renamed it before it was locked.
  if (!file || !Lock(file, F_WRLCK) || !IsStillAt(path, file)) return nullptr;
  if (ftruncate(file.get(), 0) != 0) return nullptr;
  written->Open(std::move(file), true);
  return written;
}

FileStream OpenForReading(const NativePath& path, const char* mode) {
  Descriptor file = OpenRegularFile(path, O_RDONLY);
  FileStream stream(file ? fdopen(file.get(), mode) : nullptr);
  if (stream) static_cast<void>(file.release());  // the stream's from here on
  return stream;
}

FileStream OpenForWriting(const NativePath& path, const char* mode) {
  std::unique_ptr<WrittenFile> written(new (std::nothrow) WrittenFile);
  Descriptor file = OpenRegularFile(path, O_WRONLY | O_CREAT, ownersFile);
  if (!written || !file) return {};
  FileStream stream(fopencookie(written.get(), mode, {nullptr, WriteToStream, nullptr, CloseStream}));
  if (!stream) return {};
  // A file that stood there before may be open to others, whom its new content does not concern. Some file systems
  // keep no such rights, and their files are written all the same.
  fchmod(file.get(), ownersFile);
  const bool emptied = ftruncate(file.get(), 0) == 0;
  written.release()->Open(std::move(file), false);
  if (!emptied) stream.reset();
  return stream;
}

// Does something with a file, writes it to the trace, and returns the outcome.
template <typename Action>
auto Traced(const char* what, const NativePath& path, Action action) {
  errno = 0;
  auto outcome = action();
  if (outcome) {
    Trace(TraceArea::files, "%s %s", what, path.c_str());
  } else {
    // NOLINTNEXTLINE(clang-analyzer-unix.Errno): zero, if no call has failed
    Trace(TraceArea::files, "%s %s: %s", what, path.c_str(), errno != 0 ? std::strerror(errno) : "refused");
  }
  return outcome;
}

}  // namespace

namespace platform {

FileStream OpenFileStream(const char* path, const char* mode) {
  const NativePath native(path);
  if (mode[0] == 'w') return Traced("write", native, [&] { return OpenForWriting(native, mode); });
  return Traced("read", native, [&] { return OpenForReading(native, mode); });
}

}  // namespace platform

DWORD GetFileAttributesA(LPCSTR path) {
  const NativePath native(path);
  struct stat status{};
  if (stat(native.c_str(), &status) != 0) {
    const bool couldBeThere = errno == ENOENT && *native.c_str() != '\0';
    SetLastError(couldBeThere ? ERROR_FILE_NOT_FOUND : ERROR_INVALID_NAME);
    return INVALID_FILE_ATTRIBUTES;
  }
  if (S_ISREG(status.st_mode)) return FILE_ATTRIBUTE_NORMAL;
  return S_ISDIR(status.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_DEVICE;
}

BOOL CreateDirectoryA(LPCSTR path, struct SECURITY_ATTRIBUTES*) {
  const NativePath native(path);
  return Traced("make folder", native, [&] { return mkdir(native.c_str(), ownersFolder) == 0; });
}

BOOL DeleteFileA(LPCSTR path) {
  const NativePath native(path);
  Descriptor file;
  const bool deleted =
      Traced("delete", native, [&] { return (IsLink(native) || Hold(native, file)) && unlink(native.c_str()) == 0; });
  UnlockKept();
  return deleted;
}

BOOL MoveFileA(LPCSTR from, LPCSTR to) {
  const NativePath source(from);
  const NativePath target(to);
  const bool moved = Traced("rename", source, [&] { return Move(source, target); });
  UnlockKept();
  return moved;
}

HANDLE CreateFileA(LPCSTR path, DWORD, DWORD, struct SECURITY_ATTRIBUTES*, DWORD, DWORD, HANDLE) {
  const NativePath native(path);
  std::unique_ptr<WrittenFile> file = Traced("create", native, [&] { return Create(native); });
  return file ? static_cast<HandleObject*>(file.release()) : INVALID_HANDLE_VALUE;
}

BOOL WriteFile(HANDLE handle, LPCVOID data, DWORD size, LPDWORD written, struct OVERLAPPED*) {
  *written = 0;
  if (handle == nullptr || handle == INVALID_HANDLE_VALUE) return FALSE;
  auto* file = dynamic_cast<WrittenFile*>(static_cast<HandleObject*>(handle));
  if (file == nullptr || !file->Write(static_cast<const char*>(data), size)) return FALSE;
  *written = size;
  return TRUE;
}
