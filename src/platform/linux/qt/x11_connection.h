// A connection to the X server beside Qt's own: asks about windows of the host that are not Qt's, and can be used
// while the thread of the dialogs is blocked. Any thread may call it; the X library locks.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_X11_CONNECTION_H
#define NVSUPPORT_PLATFORM_LINUX_QT_X11_CONNECTION_H

#include <xcb/xcb.h>

#include <QImage>
#include <QRect>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace windowing {

class X11Connection {
 public:
  // To the server that shows Qt's windows; null when that is no X server.
  static std::unique_ptr<X11Connection> Open();
  ~X11Connection();
  X11Connection(const X11Connection&) = delete;
  X11Connection& operator=(const X11Connection&) = delete;

  // The client area of a window on the screen, in pixels of the device; nothing if there is no such window.
  std::optional<QRect> WindowRectangle(std::uintptr_t window) const;
  // The one that the window manager handles, which a window is or lies in; without a manager that below the root. 0 if
  // there is no such window.
  xcb_window_t TopLevelWindow(std::uintptr_t window) const;
  // Null if it has none.
  QImage WindowIcon(std::uintptr_t window) const;
  // Returns when the server has done it. Windows that are gone by now are passed over.
  void SetWaitCursor(const std::vector<xcb_window_t>& windows) const;

 private:
  explicit X11Connection(xcb_connection_t* opened, xcb_screen_t* rootScreen);
  bool IsManaged(xcb_window_t window) const;

  xcb_connection_t* connection;
  xcb_screen_t* screen;
  xcb_cursor_t waitCursor = XCB_CURSOR_NONE;
  xcb_atom_t windowIcon;    // _NET_WM_ICON
  xcb_atom_t managedState;  // WM_STATE, a property of what a window manager handles
};

}  // namespace windowing

#endif
