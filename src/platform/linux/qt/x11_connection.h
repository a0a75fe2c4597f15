// A connection to the X server beside Qt's own: for windows of the host that are not Qt's, and what Qt has no words
// for.
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
  // Asks the server to show what was drawn when the window is uncovered, while nobody draws it anew; and gives the
  // window a line around it where no window manager draws one.
  void KeepContentsAndEdge(std::uintptr_t window) const;

 private:
  explicit X11Connection(xcb_connection_t* opened, xcb_screen_t* rootScreen);
  bool HasProperty(xcb_window_t window, xcb_atom_t name) const;

  xcb_connection_t* connection;
  xcb_screen_t* screen;
  xcb_atom_t windowIcon;    // _NET_WM_ICON
  xcb_atom_t managedState;  // WM_STATE, a property of what a window manager handles
  xcb_atom_t manager;       // _NET_SUPPORTING_WM_CHECK, of the root under a window manager
};

}  // namespace windowing

#endif
