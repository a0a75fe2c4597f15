// Owner of a handle, which it closes: streams, keys, searches, web handles, descriptors. The owners of the platform's
// handles have their names in platform/platform.h.
#ifndef NVSUPPORT_BASE_SCOPED_HANDLE_H
#define NVSUPPORT_BASE_SCOPED_HANDLE_H

#include <utility>

namespace base {

// `none` stands for no handle. The result of a call that marks failure by another value (INVALID_HANDLE_VALUE) is
// tested before it is owned.
template <class Handle, auto close, Handle none = Handle{}>
class ScopedHandle {
 public:
  ScopedHandle() = default;
  explicit ScopedHandle(Handle owned) : handle(owned) {}
  ScopedHandle(ScopedHandle&& other) noexcept : handle(other.release()) {}
  ScopedHandle& operator=(ScopedHandle&& other) noexcept {
    reset(other.release());
    return *this;
  }
  ~ScopedHandle() { reset(); }

  Handle get() const { return handle; }
  explicit operator bool() const { return handle != none; }
  // Gives the handle up without closing it: for a caller that looks at the result of closing.
  Handle release() { return std::exchange(handle, none); }
  void reset(Handle owned = none) {
    if (Handle old = std::exchange(handle, owned); old != none) close(old);
  }
  // For calls that deliver a handle through a pointer.
  Handle* put() {
    reset();
    return &handle;
  }

 private:
  Handle handle = none;
};

}  // namespace base

#endif
