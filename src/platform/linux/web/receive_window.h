// What of a reply's body is received and not yet read. Its memory serves one exchange after the other, and is wiped
// behind each, because a reply may hold a token. Used by WebExchange, kept with an engine.
#ifndef NVSUPPORT_PLATFORM_LINUX_WEB_RECEIVE_WINDOW_H
#define NVSUPPORT_PLATFORM_LINUX_WEB_RECEIVE_WINDOW_H

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <utility>

#include "secure_zero_memory.h"

namespace platform {

class ReceiveWindow {
 public:
  ReceiveWindow() = default;
  ~ReceiveWindow() { Wipe(); }
  ReceiveWindow(const ReceiveWindow&) = delete;
  ReceiveWindow& operator=(const ReceiveWindow&) = delete;

  bool HasUnread() const { return begin != end; }
  // Bytes that are held, read or not.
  std::size_t Size() const { return end; }
  // Throws std::bad_alloc.
  void Append(const char* data, std::size_t size) {
    if (size > capacity - end) Grow(std::max(end + size, 2 * capacity));
    std::memcpy(bytes.get() + end, data, size);
    end += size;
    used = std::max(used, end);
  }
  std::size_t Take(char* data, std::size_t size) {
    const std::size_t part = std::min(size, end - begin);
    std::memcpy(data, bytes.get() + begin, part);
    begin += part;
    return part;
  }
  // Forgets what is held, read or not.
  void Clear() { begin = end = 0; }
  void Wipe() {
    if (used > 0) SecureZeroMemory(bytes.get(), used);
    begin = end = used = 0;
  }
  void Free() {
    Wipe();
    bytes.reset();
    capacity = 0;
  }

 private:
  void Grow(std::size_t size) {
    std::unique_ptr<char[]> larger(new char[size]);  // whose bytes nobody needs to set
    if (end > 0) std::memcpy(larger.get(), bytes.get(), end);
    if (used > 0) SecureZeroMemory(bytes.get(), used);
    bytes = std::move(larger);
    used = end;
    capacity = size;
  }

  std::unique_ptr<char[]> bytes;
  std::size_t capacity = 0;
  std::size_t begin = 0;  // of what is not yet read
  std::size_t end = 0;
  std::size_t used = 0;  // bytes that were written to since the last wipe
};

}  // namespace platform

#endif
