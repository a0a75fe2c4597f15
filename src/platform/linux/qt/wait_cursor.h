// The wait cursor over this application's windows while its thread is blocked in an exchange. Qt cannot show it then:
// it is set through a connection of its own and given back through Qt's.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_WAIT_CURSOR_H
#define NVSUPPORT_PLATFORM_LINUX_QT_WAIT_CURSOR_H

#include <mutex>
#include <vector>

#include "x11_connection.h"

namespace windowing {

class WaitCursor {
 public:
  // Notes the windows that are visible now. Like GiveBack on the thread of the dialogs only.
  void NoteWindows();
  // On any thread. Without a connection it does nothing.
  void Show(const X11Connection* x11);
  void GiveBack();

 private:
  std::mutex mutex;                   // guards both
  std::vector<xcb_window_t> windows;  // those noted
  bool shown = false;
};

}  // namespace windowing

#endif
