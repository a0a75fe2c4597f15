// Ties objects to windows: installs a shared window procedure and keeps a chained record in the window's user-data
// long, so that a handle leads to its object without a table of handles.
#ifndef NVSUPPORT_UI_INSTANCE_SUBCLASSER_H
#define NVSUPPORT_UI_INSTANCE_SUBCLASSER_H

#include "platform/platform.h"

namespace nvsupport {

class Window;

// One per subclassed window and subclasser; owned by the subclasser, freed by unsubclass.
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
  // True if a new record was made; a window that has one gets the new object instead.
  bool subclass(HWND window, Window* object);
  // Hands a message to the procedure from before. The window must have a record. Takes the window out of the chain
  // on WM_DESTROY and WM_NCDESTROY.
  LRESULT callPrevious(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

 private:
  WNDPROC proc;
};

// The one of Window and its subclasses.
extern InstanceSubclasser& windowSubclasser;

}  // namespace nvsupport

#endif
