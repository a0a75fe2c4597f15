#include "x11_connection.h"

#include <xcb/xcb_cursor.h>

#include <QGuiApplication>
#include <cstdlib>
#include <limits>

// Last, because its macros take names that Qt uses.
#include <X11/Xlib.h>

namespace windowing {
namespace {

struct Free {
  void operator()(void* reply) const { std::free(reply); }
};

template <class Reply>
using Answer = std::unique_ptr<Reply, Free>;

xcb_screen_t* ScreenOf(xcb_connection_t* connection, int number) {
  xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (; number > 0 && screens.rem > 1; --number) xcb_screen_next(&screens);
  return screens.data;
}

// The wait cursor of the user's theme, or that of the server's cursor font.
xcb_cursor_t LoadWaitCursor(xcb_connection_t* connection, xcb_screen_t* screen) {
  xcb_cursor_context_t* theme = nullptr;
  if (xcb_cursor_context_new(connection, screen, &theme) < 0) return XCB_CURSOR_NONE;
  const xcb_cursor_t cursor = xcb_cursor_load_cursor(theme, "watch");
  xcb_cursor_context_free(theme);
  return cursor;
}

}  // namespace

std::unique_ptr<X11Connection> X11Connection::Open() {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (x11 == nullptr || x11->display() == nullptr) return nullptr;
  int screenNumber = 0;
  xcb_connection_t* connection = xcb_connect(XDisplayString(x11->display()), &screenNumber);
  if (xcb_connection_has_error(connection) == 0) {
    return std::unique_ptr<X11Connection>(new X11Connection(connection, ScreenOf(connection, screenNumber)));
  }
  xcb_disconnect(connection);
  return nullptr;
}

X11Connection::X11Connection(xcb_connection_t* opened, xcb_screen_t* rootScreen)
    : connection(opened), screen(rootScreen), waitCursor(LoadWaitCursor(opened, rootScreen)) {}

X11Connection::~X11Connection() {
  xcb_disconnect(connection);
}

std::optional<QRect> X11Connection::WindowRectangle(std::uintptr_t window) const {
  if (window == 0 || window > std::numeric_limits<xcb_window_t>::max()) return std::nullopt;
  const auto id = static_cast<xcb_window_t>(window);
  const auto askSize = xcb_get_geometry(connection, id);
  const auto askPlace = xcb_translate_coordinates(connection, id, screen->root, 0, 0);
  const Answer<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(connection, askSize, nullptr));
  const Answer<xcb_translate_coordinates_reply_t> place(xcb_translate_coordinates_reply(connection, askPlace, nullptr));
  if (size == nullptr || place == nullptr) return std::nullopt;
  return QRect(place->dst_x, place->dst_y, size->width, size->height);
}

void X11Connection::SetWaitCursor(const std::vector<xcb_window_t>& windows) const {
  for (const xcb_window_t window : windows) {
    const auto request = xcb_change_window_attributes_checked(connection, window, XCB_CW_CURSOR, &waitCursor);
    const Answer<xcb_generic_error_t> error(xcb_request_check(connection, request));
  }
}

}  // namespace windowing
