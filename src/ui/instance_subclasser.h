// Ties objects to windows: installs a shared window procedure, and keeps a chain of records in the window's user data,
// so that the object of a handle is found without a table of handles.
#ifndef NVSUPPORT_UI_INSTANCE_SUBCLASSER_H
#define NVSUPPORT_UI_INSTANCE_SUBCLASSER_H

#include "platform/platform.h"

namespace nvsupport {

class Window;

// One for each window and subclasser that is tied to it. The subclasser owns it; unsubclass frees it.
struct SubclassRecord {
  WNDPROC ownerProc;     // the shared procedure of the subclasser that made the record
  WNDPROC previousProc;  // the window's procedure before that subclasser took over
  Window* object;        // not owned
  SubclassRecord* next;  // the record that stood at the head before this one
};

class InstanceSubclasser {
 public:
  explicit InstanceSubclasser(WNDPROC procedure) : proc(procedure) {}
  InstanceSubclasser(const InstanceSubclasser&) = delete;
  InstanceSubclasser& operator=(const InstanceSubclasser&) = delete;
  virtual ~InstanceSubclasser() = default;
  // Takes this subclasser's record out of the window's chain; false if there is none or it cannot leave.
  virtual bool unsubclass(HWND window);

  // The window's record of this subclasser, or null.
  SubclassRecord* find(HWND window) const;
  // True if a new record was made; a window that has one already is tied to the new object instead.
  bool subclass(HWND window, Window* object);
  // Passes a message to the procedure that the window had before. The window must have a record, which goes on
  // WM_DESTROY and WM_NCDESTROY.
  LRESULT callPrevious(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

 private:
  WNDPROC proc;
};

// The subclasser of Window and its subclasses.
extern InstanceSubclasser& windowSubclasser;

}  // namespace nvsupport

#endif
