#include "x_session.h"

#include <gtest/gtest.h>
#include <xcb/xfixes.h>

#include <cstdlib>

#include "support/run_program.h"

namespace nvsupport::testing {
namespace {

struct Free {
  void operator()(void* reply) const { std::free(reply); }
};

template <class Reply>
std::unique_ptr<Reply, Free> Own(Reply* reply) {
  return std::unique_ptr<Reply, Free>(reply);
}

// Titles are few and plain: none holds a character that means something in a pattern.
std::string Search(const std::string& title) {
  return "search --onlyvisible --name \"^" + title + "$\"";
}

// The name of the key that types a character.
std::string KeyOf(char character) {
  static const std::map<char, std::string> names = {
      {'\t', "Tab"}, {'\n', "Return"}, {'\033', "Escape"}, {' ', "space"}, {'!', "exclam"},
      {'@', "at"},   {'.', "period"},  {'/', "slash"},     {'-', "minus"},
  };
  const auto name = names.find(character);
  return name != names.end() ? name->second : std::string(1, character);
}

}  // namespace

XSession::XSession(Manager manager)
    : server(std::make_unique<Process>(std::vector<std::string>{"Xvfb", "-displayfd", "1", "-screen", "0",
                                                                "2048x768x24", "-nolisten", "tcp", "-noreset"})),
      name(":" + server->ReadLine()),
      connection(xcb_connect(name.c_str(), nullptr)) {
  if (xcb_connection_has_error(connection) != 0) throw std::runtime_error("no X server");
  root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
  Own(xcb_xfixes_query_version_reply(connection, xcb_xfixes_query_version(connection, 4, 0), nullptr));
  xcb_xfixes_select_cursor_input(connection, root, XCB_XFIXES_CURSOR_NOTIFY_MASK_DISPLAY_CURSOR);
  if (manager == Manager::none) return;
  windowManager = std::make_unique<Process>(
      std::vector<std::string>{"openbox", "--sm-disable", "--config-file", NV_OPENBOX_CONFIGURATION},
      std::map<std::string, std::string>{{"DISPLAY", name}}, true);
  EXPECT_TRUE(WaitUntil([this] { return !Do("get_desktop").empty(); })) << "the window manager keeps desktops";
}

std::string XSession::Do(const std::string& actions) const {
  return RunProgram({"sh", "-c", "DISPLAY=" + name + " xdotool " + actions + " 2>/dev/null"}).output;
}

void XSession::Type(const std::string& text) const {
  std::string keys;
  for (const char character : text) keys += " " + KeyOf(character);
  Do("key" + keys);
}

void XSession::Hover(xcb_window_t window, Place inside) const {
  Do("mousemove --window " + std::to_string(window) + " " + std::to_string(inside.x) + " " + std::to_string(inside.y));
}

void XSession::Click(xcb_window_t window, Place inside) const {
  Hover(window, inside);
  Do("click 1");
}

void XSession::SplitScreen() const {
  const std::string half = " 1024/270x768/200+";
  EXPECT_EQ(RunProgram({"sh", "-c",
                        "export DISPLAY=" + name + "; xrandr --setmonitor left" + half +
                            "0+0 screen && xrandr --setmonitor right" + half + "1024+0 none"})
                .exitCode,
            0);
}

xcb_atom_t XSession::Atom(const std::string& text) const {
  const auto ask = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(text.size()), text.c_str());
  return Own(xcb_intern_atom_reply(connection, ask, nullptr))->atom;
}

std::vector<std::uint32_t> XSession::Property(xcb_window_t window, xcb_atom_t property) const {
  const auto ask = xcb_get_property(connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 4);
  const auto reply = Own(xcb_get_property_reply(connection, ask, nullptr));
  if (reply == nullptr || reply->format != 32) return {};
  const auto* words = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {words, words + reply->value_len};
}

void XSession::CloseBox(xcb_window_t window) const {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = window;
  event.type = Atom("WM_PROTOCOLS");
  event.data.data32[0] = Atom("WM_DELETE_WINDOW");
  xcb_send_event(connection, 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&event));
  xcb_flush(connection);
}

void XSession::Drag(xcb_window_t window, Place from, Place by) const {
  const Place before = AreaOf(window);
  const auto pointAt = [](Place place) {
    return "mousemove " + std::to_string(place.x) + " " + std::to_string(place.y) + " ";
  };
  Do(pointAt(from) + "mousedown 1 " + pointAt({from.x + by.x / 2, from.y + by.y / 2}));
  EXPECT_TRUE(WaitUntil([&] {
    Do(pointAt({from.x + by.x, from.y + by.y}));
    return Place(AreaOf(window)) == Place{before.x + by.x, before.y + by.y};
  }));
  Do("mouseup 1");
}

xcb_window_t XSession::Await(const std::string& title) const {
  xcb_window_t found = 0;
  EXPECT_TRUE(WaitUntil([&] {
    found = static_cast<xcb_window_t>(std::atoll(Do(Search(title)).c_str()));
    return found != 0 && HasFocus(found);
  })) << title;
  return found;
}

bool XSession::HasFocus(xcb_window_t window) const {
  const auto focus = Own(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
  return focus != nullptr && focus->focus == window;
}

bool XSession::IsGone(const std::string& title) const {
  return WaitUntil([&] { return Do(Search(title)).empty(); });
}

bool XSession::IsGone(xcb_window_t window) const {
  return WaitUntil([&] { return AreaOf(window).width == 0; });
}

Area XSession::AreaOf(xcb_window_t window) const {
  const auto askSize = xcb_get_geometry(connection, window);
  const auto askPlace = xcb_translate_coordinates(connection, window, root, 0, 0);
  const auto size = Own(xcb_get_geometry_reply(connection, askSize, nullptr));
  const auto place = Own(xcb_translate_coordinates_reply(connection, askPlace, nullptr));
  if (size == nullptr || place == nullptr) return {};
  return {{place->dst_x, place->dst_y}, size->width, size->height};
}

XSession::Frame XSession::FrameOf(xcb_window_t window) const {
  std::vector<std::uint32_t> widths;  // left, right, top, bottom
  EXPECT_TRUE(WaitUntil([&] { return (widths = Property(window, Atom("_NET_FRAME_EXTENTS"))).size() == 4; }));
  widths.resize(4);
  return {static_cast<int>(widths[2]), static_cast<int>(widths[3])};
}

xcb_window_t XSession::OwnerOf(xcb_window_t window) const {
  const std::vector<std::uint32_t> owner = Property(window, XCB_ATOM_WM_TRANSIENT_FOR);
  return owner.empty() ? 0 : owner.front();
}

xcb_window_t XSession::MakeWindow(const Area& area, xcb_window_t parent) const {
  const xcb_window_t window = xcb_generate_id(connection);
  xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, parent != 0 ? parent : root,
                    static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
                    static_cast<std::uint16_t>(area.width), static_cast<std::uint16_t>(area.height), 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
  // Asked again: a window manager that is starting up may miss it.
  EXPECT_TRUE(WaitUntil([&] {
    xcb_map_window(connection, window);
    const auto ask = xcb_get_window_attributes(connection, window);
    return Own(xcb_get_window_attributes_reply(connection, ask, nullptr))->map_state == XCB_MAP_STATE_VIEWABLE;
  }));
  return window;
}

std::vector<std::uint32_t> XSession::ShownCursor() const {
  const auto ask = xcb_xfixes_get_cursor_image(connection);
  const auto image = Own(xcb_xfixes_get_cursor_image_reply(connection, ask, nullptr));
  const std::uint32_t* pixels = xcb_xfixes_get_cursor_image_cursor_image(image.get());
  return {pixels, pixels + xcb_xfixes_get_cursor_image_cursor_image_length(image.get())};
}

int XSession::CursorChanges() const {
  HasFocus(root);  // what is answered comes behind the events before it
  int changes = 0;
  while (Own(xcb_poll_for_event(connection))) ++changes;
  return changes;
}

}  // namespace nvsupport::testing
