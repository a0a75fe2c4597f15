// A screen of a test's own (Xvfb on a free display number, with or without a window manager) and the user before it,
// whom xdotool plays. What is waited for comes within 20 seconds, or the test fails.
#ifndef NVSUPPORT_TESTS_DISPLAY_X_SESSION_H
#define NVSUPPORT_TESTS_DISPLAY_X_SESSION_H

#include <gtest/gtest.h>
#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "process.h"
#include "support/run_program.h"

namespace nvsupport::testing {

struct FreeReply {
  void operator()(void* reply) const { std::free(reply); }
};

template <class Reply>
std::unique_ptr<Reply, FreeReply> Own(Reply* reply) {
  return std::unique_ptr<Reply, FreeReply>(reply);
}

struct Place {
  int x = 0;
  int y = 0;
  bool operator==(const Place&) const = default;
};

struct Area : Place {
  int width = 0;
  int height = 0;
};

class XSession {
 public:
  enum class Manager { none, openbox };

  explicit XSession(Manager manager = Manager::none)
      : server(new Process({"Xvfb", "-displayfd", "1", "-screen", "0", "2048x768x24", "-nolisten", "tcp", "-noreset"})),
        // At their end a thread of Qt's still runs, in which the search for leaks can crash.
        environment{{"DISPLAY", ":" + server->ReadLine()}, {"WAYLAND_DISPLAY", ""}, {"ASAN_OPTIONS", "detect_leaks=0"}},
        connection(xcb_connect(environment.at("DISPLAY").c_str(), nullptr)) {
    if (xcb_connection_has_error(connection) != 0) throw std::runtime_error("no X server");
    root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    Own(xcb_xfixes_query_version_reply(connection, xcb_xfixes_query_version(connection, 4, 0), nullptr));
    if (manager == Manager::none) return;
    const std::vector<std::string> openbox = {"openbox", "--sm-disable", "--config-file", NV_OPENBOX_CONFIGURATION};
    windowManager = std::make_unique<Process>(openbox, environment, true);
    EXPECT_TRUE(WaitUntil([this] { return !Do("get_desktop").empty(); })) << "the window manager keeps desktops";
    // It has started once it takes a window and lets it go again.
    const xcb_window_t window = MakeWindow({{0, 0}, 50, 50});
    EXPECT_TRUE(WaitUntil([this] { return Property(root, "_NET_CLIENT_LIST").size() == 1; }));
    xcb_destroy_window(connection, window);
    EXPECT_TRUE(WaitUntil([this] { return Property(root, "_NET_CLIENT_LIST").empty(); }));
  }

  XSession(const XSession&) = delete;
  XSession& operator=(const XSession&) = delete;
  ~XSession() { xcb_disconnect(connection); }

  // The environment of a program on this screen.
  const std::map<std::string, std::string>& Environment() const { return environment; }
  // Ends the X server under its programs; nothing can be asked of the screen any more.
  void End() { server.reset(); }

  // Runs a command of the shell on the screen; gives what it prints.
  std::string Run(const std::string& command) const {
    return RunProgram({"sh", "-c", "DISPLAY=" + environment.at("DISPLAY") + " " + command + " 2>/dev/null"}).output;
  }

  // What the user does, in xdotool's words, such as "key alt+p".
  std::string Do(const std::string& actions) const { return Run("xdotool " + actions); }
  // Letters, digits and "\t\n\033 !@./-": Tab, Enter, Esc ...
  void Type(const std::string& text) const {
    static const std::map<char, std::string> names = {
        {'\t', "Tab"}, {'\n', "Return"}, {'\033', "Escape"}, {' ', "space"}, {'!', "exclam"},
        {'@', "at"},   {'.', "period"},  {'/', "slash"},     {'-', "minus"},
    };
    std::string keys;
    for (const char character : text) {
      const auto name = names.find(character);
      keys += ' ' + (name != names.end() ? name->second : std::string(1, character));
    }
    Do("key" + keys);
  }

  void CloseBox(xcb_window_t window) const {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = Atom("WM_PROTOCOLS");
    event.data.data32[0] = Atom("WM_DELETE_WINDOW");
    xcb_send_event(connection, 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&event));
    xcb_flush(connection);
  }

  void Drag(xcb_window_t window, Place from, Place by) const {
    const Place before = AreaOf(window);
    const auto pointAt = [&](int x, int y) {
      return "mousemove " + std::to_string(from.x + x) + " " + std::to_string(from.y + y) + " ";
    };
    Do(pointAt(0, 0) + "mousedown 1 " + pointAt(by.x / 2, by.y / 2));
    EXPECT_TRUE(WaitUntil([&] {
      Do(pointAt(by.x, by.y));
      return Place(AreaOf(window)) == Place{before.x + by.x, before.y + by.y};
    }));
    Do("mouseup 1");
  }

  // The visible window with this title, once it has the input.
  xcb_window_t Await(const std::string& title) const {
    xcb_window_t found = 0;
    EXPECT_TRUE(WaitUntil([&] {
      found = static_cast<xcb_window_t>(std::atoll(Do("search --onlyvisible --name '^" + title + "$'").c_str()));
      const auto focus = Own(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
      if (found == 0 || focus == nullptr) return false;
      if (focus->focus == found) return true;
      // A window manager need not give a new window the input; the user clicks on it then.
      if (windowManager != nullptr) Do("windowactivate " + std::to_string(found));
      return false;
    })) << title;
    return found;
  }

  bool IsGone(xcb_window_t window) const {
    return WaitUntil([&] { return AreaOf(window).width == 0; });
  }

  // Its client area on the screen.
  Area AreaOf(xcb_window_t window) const {
    const auto askSize = xcb_get_geometry(connection, window);
    const auto askPlace = xcb_translate_coordinates(connection, window, root, 0, 0);
    const auto size = Own(xcb_get_geometry_reply(connection, askSize, nullptr));
    const auto place = Own(xcb_translate_coordinates_reply(connection, askPlace, nullptr));
    if (size == nullptr || place == nullptr) return {};
    return {{place->dst_x, place->dst_y}, size->width, size->height};
  }

  // The 32-bit numbers of a property, such as the owner's id in WM_TRANSIENT_FOR.
  std::vector<std::uint32_t> Property(xcb_window_t window, const std::string& name) const {
    const auto ask = xcb_get_property(connection, 0, window, Atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 4);
    const auto reply = Own(xcb_get_property_reply(connection, ask, nullptr));
    if (reply == nullptr || reply->format != 32) return {};
    const auto* words = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {words, words + reply->value_len};
  }

  // A window of the test's own, as a host without Qt has one; 0: at the top level.
  xcb_window_t MakeWindow(const Area& area, xcb_window_t parent = 0) const {
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

  // Its pixels.
  std::vector<std::uint32_t> ShownCursor() const {
    const auto ask = xcb_xfixes_get_cursor_image(connection);
    const auto image = Own(xcb_xfixes_get_cursor_image_reply(connection, ask, nullptr));
    const std::uint32_t* pixels = xcb_xfixes_get_cursor_image_cursor_image(image.get());
    return {pixels, pixels + xcb_xfixes_get_cursor_image_cursor_image_length(image.get())};
  }

 private:
  xcb_atom_t Atom(const std::string& text) const {
    const auto ask = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(text.size()), text.c_str());
    return Own(xcb_intern_atom_reply(connection, ask, nullptr))->atom;
  }

  std::unique_ptr<Process> server;
  std::unique_ptr<Process> windowManager;
  std::map<std::string, std::string> environment;
  xcb_connection_t* connection = nullptr;
  xcb_window_t root = 0;
};

}  // namespace nvsupport::testing

#endif
