#include "x11_connection.h"

#include <QGuiApplication>
#include <cstdlib>
#include <limits>
#include <string_view>

// Last, because it defines macros with names that Qt uses.
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

xcb_atom_t AtomOf(xcb_connection_t* connection, std::string_view name) {
  const auto ask = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
  const Answer<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, ask, nullptr));
  return reply != nullptr ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
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
    : connection(opened),
      screen(rootScreen),
      windowIcon(AtomOf(opened, "_NET_WM_ICON")),
      managedState(AtomOf(opened, "WM_STATE")),
      manager(AtomOf(opened, "_NET_SUPPORTING_WM_CHECK")) {}

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

bool X11Connection::HasProperty(xcb_window_t window, xcb_atom_t name) const {
  const auto ask = xcb_get_property(connection, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, 0);
  const Answer<xcb_get_property_reply_t> state(xcb_get_property_reply(connection, ask, nullptr));
  return state != nullptr && state->type != XCB_ATOM_NONE;
}

xcb_window_t X11Connection::TopLevelWindow(std::uintptr_t window) const {
  if (!WindowRectangle(window)) return 0;
  xcb_window_t topLevel = 0;
  for (auto at = static_cast<xcb_window_t>(window); at != screen->root;) {
    topLevel = at;
    if (HasProperty(at, managedState)) break;
    const Answer<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, at), nullptr));
    if (tree == nullptr) return 0;
    at = tree->parent;
  }
  return topLevel;
}

QImage X11Connection::WindowIcon(std::uintptr_t window) const {
  constexpr std::uint32_t longestSide = 256;
  constexpr std::uint32_t mostWords = 2 + longestSide * longestSide;
  const auto ask =
      xcb_get_property(connection, 0, static_cast<xcb_window_t>(window), windowIcon, XCB_ATOM_CARDINAL, 0, mostWords);
  const Answer<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, ask, nullptr));
  if (reply == nullptr || reply->format != 32 || reply->value_len < 2) return {};
  // Width, height and pixels of the first icon; others may follow.
  const auto* words = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  const std::uint32_t width = words[0];
  const std::uint32_t height = words[1];
  if (width == 0 || width > longestSide || height == 0 || height > longestSide) return {};
  if (reply->value_len < 2 + width * height) return {};
  return QImage(reinterpret_cast<const uchar*>(words + 2), static_cast<int>(width), static_cast<int>(height),
                QImage::Format_ARGB32)
      .copy();
}

void X11Connection::KeepContentsAndEdge(std::uintptr_t window) const {
  constexpr std::uint32_t looks[] = {0x808080, XCB_BACKING_STORE_WHEN_MAPPED};  // the colour of the line: grey
  constexpr std::uint32_t width = 1;
  const auto id = static_cast<xcb_window_t>(window);
  xcb_change_window_attributes(connection, id, XCB_CW_BORDER_PIXEL | XCB_CW_BACKING_STORE, looks);
  if (!HasProperty(screen->root, manager)) {
    xcb_configure_window(connection, id, XCB_CONFIG_WINDOW_BORDER_WIDTH, &width);
  }
  xcb_flush(connection);
}

}  // namespace windowing
