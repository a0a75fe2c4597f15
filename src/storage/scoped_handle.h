// Owner of a handle that one function closes: registry keys, searches, streams, web handles.
#ifndef NVSUPPORT_STORAGE_SCOPED_HANDLE_H
#define NVSUPPORT_STORAGE_SCOPED_HANDLE_H

#include <utility>

namespace nvsupport {

// Null is no handle. A call that marks failure otherwise (INVALID_HANDLE_VALUE) is tested before its result is owned.
template <class Handle, auto close>
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
  explicit operator bool() const { return handle != nullptr; }
  // Gives the handle up without closing it: for a caller that looks at the result of closing.
  Handle release() { return std::exchange(handle, nullptr); }
  void reset(Handle owned = nullptr) {
    if (Handle old = std::exchange(handle, owned)) close(old);
  }
  // For calls that deliver a handle through a pointer.
  Handle* put() {
    reset();
    return &handle;
  }

 private:
  Handle handle = nullptr;
};

}  // namespace nvsupport

#endif
