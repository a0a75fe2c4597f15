// What lives as long as the process or the module, and the calls that use it. A process may end while other threads are
// in the middle of calls: then nothing is torn down under them. Used by every export and every process-wide object that
// has something to tear down; a plugin that has this header counts for itself alone.
#ifndef NVSUPPORT_BASE_PROCESS_WIDE_H
#define NVSUPPORT_BASE_PROCESS_WIDE_H

#include <atomic>
#include <cstdint>
#include <utility>

namespace base {

// A call of the library from outside, as long as it is under way.
class Call {
 public:
  Call() : begun(calls.fetch_add(1) < ended) {}
  ~Call() { calls.fetch_sub(1); }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

  // False when the process-wide objects are gone already: the call has to fail.
  explicit operator bool() const { return begun; }

  // Each process-wide object asks this before it is destroyed. True if no call is under way, and then all of them may
  // be destroyed; the first answer holds for all.
  static bool AllEnded() {
    std::uint32_t none = 0;
    if (calls.compare_exchange_strong(none, ended) || none >= ended) return true;
    calls.fetch_add(1);  // as a call that never ends
    return false;
  }

 private:
  static constexpr std::uint32_t ended = 1u << 31;
  static constinit inline std::atomic<std::uint32_t> calls = 0;

  const bool begun;
};

// An object that is destroyed with the module, but not at the end of a process with calls under way.
template <class Object>
class ProcessWide {
 public:
  template <class... Arguments>
  explicit ProcessWide(Arguments&&... arguments) : object(std::forward<Arguments>(arguments)...) {}
  ~ProcessWide() {
    if (Call::AllEnded()) object.~Object();
  }
  ProcessWide(const ProcessWide&) = delete;
  ProcessWide& operator=(const ProcessWide&) = delete;

  constexpr Object& operator*() { return object; }

 private:
  union {
    Object object;
  };
};

}  // namespace base

#endif
