// Threads and events behind handles. A thread's handle joins it when it closes, so no thread of the module can
// outlive the module.
#include "threads.h"

#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <thread>

#include "blocked_signals.h"
#include "handle_object.h"

namespace {

class Waitable : public platform::HandleObject {
 public:
  virtual DWORD Wait(DWORD milliseconds) = 0;
};

class Event final : public Waitable {
 public:
  Event(bool manual, bool initial) : manualReset(manual), signalled(initial) {}

  void Set() {
    const std::lock_guard lock(mutex);
    signalled = true;
    changed.notify_all();
  }

  DWORD Wait(DWORD milliseconds) override {
    std::unique_lock lock(mutex);
    const auto isSet = [this] { return signalled; };
    if (milliseconds == INFINITE) {
      changed.wait(lock, isSet);
    } else if (!changed.wait_for(lock, std::chrono::milliseconds(milliseconds), isSet)) {
      return WAIT_TIMEOUT;
    }
    if (!manualReset) signalled = false;
    return WAIT_OBJECT_0;
  }

 private:
  std::mutex mutex;
  std::condition_variable changed;
  const bool manualReset;
  bool signalled;
};

class Thread final : public Waitable {
 public:
  // Throws std::system_error when the system gives no thread.
  Thread(LPTHREAD_START_ROUTINE start, LPVOID parameter) {
    // Signal handlers of the host must not run on a thread that it does not know.
    const platform::BlockedSignals blocked(platform::AllSignals());
    thread = std::thread([this, start, parameter] {
      start(parameter);
      ended.Set();
    });
  }
  ~Thread() override { thread.join(); }

  DWORD Wait(DWORD milliseconds) override { return ended.Wait(milliseconds); }

 private:
  Event ended{true, false};
  std::thread thread;
};

// Null for a handle of another kind.
template <typename Kind>
Kind* KindOf(HANDLE handle) {
  return dynamic_cast<Kind*>(static_cast<platform::HandleObject*>(handle));
}

// The handle's value is the base's address, as CloseHandle expects it.
HANDLE HandleOf(std::unique_ptr<platform::HandleObject> object) {
  return object.release();
}

}  // namespace

HANDLE CreateThread(struct SECURITY_ATTRIBUTES*, std::uintptr_t, LPTHREAD_START_ROUTINE start, LPVOID parameter, DWORD,
                    LPDWORD) try {
  return HandleOf(std::make_unique<Thread>(start, parameter));
} catch (const std::exception&) {
  return nullptr;
}

HANDLE CreateEventA(struct SECURITY_ATTRIBUTES*, BOOL manualReset, BOOL initialState, LPCSTR) try {
  return HandleOf(std::make_unique<Event>(manualReset != FALSE, initialState != FALSE));
} catch (const std::exception&) {
  return nullptr;
}

BOOL SetEvent(HANDLE event) {
  auto* const object = KindOf<Event>(event);
  if (object == nullptr) return FALSE;
  object->Set();
  return TRUE;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
  auto* const object = KindOf<Waitable>(handle);
  return object == nullptr ? WAIT_FAILED : object->Wait(milliseconds);
}

DWORD GetCurrentThreadId() {
  return static_cast<DWORD>(gettid());
}
