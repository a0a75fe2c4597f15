#include "x_session.h"

#include <gtest/gtest.h>
#include <xcb/xfixes.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <vector>

namespace nvsupport::testing {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr std::uint32_t keyTab = 0xFF09;
constexpr std::uint32_t keyEnter = 0xFF0D;
constexpr std::uint32_t keyEscape = 0xFF1B;
constexpr std::uint32_t keyShift = 0xFFE1;
constexpr std::uint32_t keyAlt = 0xFFE9;

struct Free {
  void operator()(void* reply) const { std::free(reply); }
};

template <class Reply>
std::unique_ptr<Reply, Free> Own(Reply* reply) {
  return std::unique_ptr<Reply, Free>(reply);
}

std::uint32_t SymbolOf(char letter) {
  switch (letter) {
    case '\t':
      return keyTab;
    case '\n':
      return keyEnter;
    case '\033':
      return keyEscape;
    default:
      return static_cast<std::uint32_t>(letter);
  }
}

}  // namespace

bool WaitUntil(const std::function<bool()>& condition) {
  for (const auto end = steady_clock::now() + std::chrono::seconds(20); steady_clock::now() < end;) {
    if (condition()) return true;
    std::this_thread::sleep_for(milliseconds(5));
  }
  return false;
}

XSession::XSession(Manager manager) {
  server = std::make_unique<Process>(std::vector<std::string>{"Xvfb", "-displayfd", "1", "-screen", "0", "1024x768x24",
                                                              "-nolisten", "tcp", "-noreset"},
                                     std::map<std::string, std::string>{});
  name = ":" + server->ReadLine();
  connection = xcb_connect(name.c_str(), nullptr);
  if (xcb_connection_has_error(connection) != 0) return;
  root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
  Own(xcb_xfixes_query_version_reply(connection, xcb_xfixes_query_version(connection, 4, 0), nullptr));
  if (manager == Manager::none) return;
  windowManager = std::make_unique<Process>(std::vector<std::string>{"openbox", "--sm-disable"},
                                            std::map<std::string, std::string>{{"DISPLAY", name}}, true);
  EXPECT_TRUE(WaitUntil([this] { return Property(root, "_NET_SUPPORTING_WM_CHECK", XCB_ATOM_WINDOW).has_value(); }));
}

XSession::~XSession() {
  xcb_disconnect(connection);
}

xcb_atom_t XSession::Atom(const char* atom) const {
  const std::string text = atom;
  const auto ask = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(text.size()), text.c_str());
  return Own(xcb_intern_atom_reply(connection, ask, nullptr))->atom;
}

std::optional<std::uint32_t> XSession::Property(xcb_window_t window, const char* property, xcb_atom_t type) const {
  const auto ask = xcb_get_property(connection, 0, window, Atom(property), type, 0, 1);
  const auto reply = Own(xcb_get_property_reply(connection, ask, nullptr));
  if (reply == nullptr || reply->format != 32 || reply->value_len == 0) return std::nullopt;
  return *static_cast<std::uint32_t*>(xcb_get_property_value(reply.get()));
}

xcb_window_t XSession::Find(xcb_window_t parent, const std::string& title) const {
  const auto tree = Own(xcb_query_tree_reply(connection, xcb_query_tree(connection, parent), nullptr));
  if (tree == nullptr) return 0;
  const xcb_window_t* children = xcb_query_tree_children(tree.get());
  for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
    const auto askState = xcb_get_window_attributes(connection, children[i]);
    const auto askTitle =
        xcb_get_property(connection, 0, children[i], Atom("_NET_WM_NAME"), Atom("UTF8_STRING"), 0, 99);
    const auto state = Own(xcb_get_window_attributes_reply(connection, askState, nullptr));
    const auto text = Own(xcb_get_property_reply(connection, askTitle, nullptr));
    if (state == nullptr || text == nullptr || state->map_state != XCB_MAP_STATE_VIEWABLE) continue;
    const std::string found(static_cast<const char*>(xcb_get_property_value(text.get())),
                            static_cast<std::size_t>(xcb_get_property_value_length(text.get())));
    if (found == title) return children[i];
    if (const xcb_window_t inside = Find(children[i], title)) return inside;
  }
  return 0;
}

xcb_window_t XSession::FindWindow(const std::string& title) {
  xcb_window_t found = 0;
  EXPECT_TRUE(WaitUntil([&] { return (found = Find(root, title)) != 0; })) << "no window " << title;
  return found;
}

bool XSession::IsGone(const std::string& title) {
  return WaitUntil([&] { return Find(root, title) == 0; });
}

Area XSession::AreaOf(xcb_window_t window) const {
  const auto askSize = xcb_get_geometry(connection, window);
  const auto askPlace = xcb_translate_coordinates(connection, window, root, 0, 0);
  const auto size = Own(xcb_get_geometry_reply(connection, askSize, nullptr));
  const auto place = Own(xcb_translate_coordinates_reply(connection, askPlace, nullptr));
  if (size == nullptr || place == nullptr) return {};
  return {{place->dst_x, place->dst_y}, size->width, size->height};
}

xcb_window_t XSession::OwnerOf(xcb_window_t window) const {
  return Property(window, "WM_TRANSIENT_FOR", XCB_ATOM_WINDOW).value_or(0);
}

bool XSession::IsAbove(xcb_window_t window, xcb_window_t other) const {
  const auto ask = xcb_get_property(connection, 0, root, Atom("_NET_CLIENT_LIST_STACKING"), XCB_ATOM_WINDOW, 0, 99);
  const auto reply = Own(xcb_get_property_reply(connection, ask, nullptr));
  if (reply == nullptr) return false;
  const auto* first = static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
  const xcb_window_t* end = first + reply->value_len;
  return std::find(std::find(first, end, other), end, window) != end;
}

bool XSession::HasFocus(xcb_window_t window) const {
  const auto focus = Own(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
  return focus != nullptr && focus->focus == window;
}

xcb_window_t XSession::MakeWindow(const Area& area) {
  const xcb_window_t window = xcb_generate_id(connection);
  xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, root, static_cast<std::int16_t>(area.x),
                    static_cast<std::int16_t>(area.y), static_cast<std::uint16_t>(area.width),
                    static_cast<std::uint16_t>(area.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0,
                    nullptr);
  EXPECT_TRUE(WaitUntil([&] {
    xcb_map_window(connection, window);  // again, because a window manager that starts up misses the first
    const auto ask = xcb_get_window_attributes(connection, window);
    return Own(xcb_get_window_attributes_reply(connection, ask, nullptr))->map_state == XCB_MAP_STATE_VIEWABLE;
  }));
  return window;
}

void XSession::MoveWindow(xcb_window_t window, Place to) {
  const Area before = AreaOf(window);
  const std::uint32_t values[] = {static_cast<std::uint32_t>(to.x), static_cast<std::uint32_t>(to.y)};
  xcb_configure_window(connection, window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values);
  EXPECT_TRUE(WaitUntil([&] { return Place(AreaOf(window)) != Place(before); }));
}

void XSession::DestroyWindow(xcb_window_t window) {
  xcb_destroy_window(connection, window);
  Sync();
}

void XSession::Sync() const {
  Own(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

void XSession::Press(std::uint8_t event, std::uint8_t detail) {
  xcb_test_fake_input(connection, event, detail, XCB_CURRENT_TIME, root, 0, 0, 0);
  Sync();
}

void XSession::PointAt(Place place) {
  xcb_test_fake_input(connection, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, root, static_cast<std::int16_t>(place.x),
                      static_cast<std::int16_t>(place.y), 0);
  Sync();
}

void XSession::Click(Place place) {
  PointAt(place);
  Press(XCB_BUTTON_PRESS, 1);
  Press(XCB_BUTTON_RELEASE, 1);
}

void XSession::Drag(xcb_window_t window, Place from, Place by) {
  const Place before = AreaOf(window);
  PointAt(from);
  Press(XCB_BUTTON_PRESS, 1);
  // The window manager takes its time to notice that this is no click.
  int step = 0;
  EXPECT_TRUE(WaitUntil([&] {
    step = step % 4 + 1;
    PointAt({from.x + by.x * step / 8, from.y + by.y * step / 8});
    return Place(AreaOf(window)) != before;
  }));
  PointAt({from.x + by.x, from.y + by.y});
  EXPECT_TRUE(WaitUntil([&] { return Place(AreaOf(window)) == Place{before.x + by.x, before.y + by.y}; }));
  Press(XCB_BUTTON_RELEASE, 1);
  // Until the window manager lets go, keys are its own.
  EXPECT_TRUE(WaitUntil([&] {
    const auto ask = xcb_grab_keyboard(connection, 0, root, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    return Own(xcb_grab_keyboard_reply(connection, ask, nullptr))->status == XCB_GRAB_STATUS_SUCCESS;
  }));
  xcb_ungrab_keyboard(connection, XCB_CURRENT_TIME);
  Sync();
}

XSession::Key XSession::KeyOf(std::uint32_t symbol) const {
  const xcb_setup_t* setup = xcb_get_setup(connection);
  const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
  const auto ask = xcb_get_keyboard_mapping(connection, setup->min_keycode, count);
  const auto mapping = Own(xcb_get_keyboard_mapping_reply(connection, ask, nullptr));
  const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
  for (int i = 0; i < count * mapping->keysyms_per_keycode; ++i) {
    const int level = i % mapping->keysyms_per_keycode;
    if (symbols[i] != symbol || level > 1) continue;
    return {static_cast<std::uint8_t>(setup->min_keycode + i / mapping->keysyms_per_keycode), level == 1};
  }
  ADD_FAILURE() << "no key for " << symbol;
  return {};
}

void XSession::PressKey(std::uint32_t symbol, std::uint32_t heldSymbol) {
  const Key key = KeyOf(symbol);
  if (key.shifted) heldSymbol = keyShift;
  const std::uint8_t held = heldSymbol != 0 ? KeyOf(heldSymbol).code : std::uint8_t{0};
  if (held != 0) Press(XCB_KEY_PRESS, held);
  Press(XCB_KEY_PRESS, key.code);
  Press(XCB_KEY_RELEASE, key.code);
  if (held != 0) Press(XCB_KEY_RELEASE, held);
}

void XSession::Type(const std::string& text) {
  for (const char letter : text) PressKey(SymbolOf(letter), 0);
}

void XSession::TypeWithAlt(char letter) {
  PressKey(SymbolOf(letter), keyAlt);
}

void XSession::CloseBox(xcb_window_t window) {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = window;
  event.type = Atom("WM_PROTOCOLS");
  event.data.data32[0] = Atom("WM_DELETE_WINDOW");
  xcb_send_event(connection, 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&event));
  Sync();
}

std::vector<std::uint32_t> XSession::ShownCursor() const {
  const auto image =
      Own(xcb_xfixes_get_cursor_image_reply(connection, xcb_xfixes_get_cursor_image(connection), nullptr));
  if (image == nullptr) return {};
  const std::uint32_t* pixels = xcb_xfixes_get_cursor_image_cursor_image(image.get());
  return {pixels, pixels + xcb_xfixes_get_cursor_image_cursor_image_length(image.get())};
}

void XSession::WatchCursor() {
  xcb_xfixes_select_cursor_input(connection, root, XCB_XFIXES_CURSOR_NOTIFY_MASK_DISPLAY_CURSOR);
  Sync();
}

int XSession::CursorChanges() {
  Sync();
  int changes = 0;
  while (const auto event = Own(xcb_poll_for_event(connection))) {
    const auto* extension = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if ((event->response_type & 0x7F) == extension->first_event + XCB_XFIXES_CURSOR_NOTIFY) ++changes;
  }
  return changes;
}

}  // namespace nvsupport::testing
