// What the handles of files, events and threads point to: CloseHandle destroys any of them. Handles of the web client
// and of windows are numbers in tables of their own (web_client.cpp, windowing/window_tree.cpp).
#ifndef NVSUPPORT_PLATFORM_LINUX_HANDLE_OBJECT_H
#define NVSUPPORT_PLATFORM_LINUX_HANDLE_OBJECT_H

#include "types.h"

namespace platform {

class HandleObject {
 public:
  HandleObject() = default;
  HandleObject(const HandleObject&) = delete;
  HandleObject& operator=(const HandleObject&) = delete;
  virtual ~HandleObject() = default;
  // Ends the object's use; false when something was lost, as a failing close of a file. The object is deleted next.
  virtual bool Close() { return true; }
};

}  // namespace platform

// Closes a handle of any area: file, event, thread.
BOOL CloseHandle(HANDLE handle);

#endif
