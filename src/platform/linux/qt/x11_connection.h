// A connection of our own to the X server, beside Qt's. It serves what Qt has no functions for, such as the host's
// windows that are not Qt's.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_X11_CONNECTION_H
#define NVSUPPORT_PLATFORM_LINUX_QT_X11_CONNECTION_H

#include <xcb/xcb.h>

#include <QImage>
#include <QRect>
#include <cstdint>
#include <memory>
#include <optional>

namespace windowing {

class X11Connection {
 public:
  // Connects to the X server that shows Qt's windows; null if they are on another system.
  static std::unique_ptr<X11Connection> Open();
  ~X11Connection();
  X11Connection(const X11Connection&) = delete;
  X11Connection& operator=(const X11Connection&) = delete;

  // The client area of a window on the screen, in the server's pixels; nothing if there is no such window.
  std::optional<QRect> WindowRectangle(std::uintptr_t window) const;
  // The window itself, or the one it lies in, that a window manager handles; without a window manager, the one right
  // below the root window. 0 if there is no such window.
  xcb_window_t TopLevelWindow(std::uintptr_t window) const;
  // Null if it has none.
  QImage WindowIcon(std::uintptr_t window) const;
  // Asks the server to keep what is drawn in the window, so that it shows again when the window is uncovered while
  // nobody draws. Without a window manager the window gets a line around it.
  void KeepContentsAndEdge(std::uintptr_t window) const;

 private:
  explicit X11Connection(xcb_connection_t* opened, xcb_screen_t* rootScreen);
  bool HasProperty(xcb_window_t window, xcb_atom_t name) const;

  xcb_connection_t* connection;
  xcb_screen_t* screen;
  xcb_atom_t windowIcon;    // _NET_WM_ICON
  xcb_atom_t managedState;  // WM_STATE, which a window manager sets on each window that it handles
  xcb_atom_t manager;       // _NET_SUPPORTING_WM_CHECK, which it sets on the root window
};

}  // namespace windowing

#endif
