// A screen of a test's own, Xvfb on a free display number with a window manager, where this process and its children
// open their windows; on it a window as a host without Qt has one; and the user before it, whom xdotool plays. What is
// waited for comes within 20 seconds, or the test fails.
#ifndef NVSUPPORT_TESTS_DISPLAY_SCREEN_H
#define NVSUPPORT_TESTS_DISPLAY_SCREEN_H

#include <gtest/gtest.h>
#include <xcb/xcb.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "support/run_program.h"
#include "support/temporary_home.h"

namespace nvsupport::testing {

template <class Reply>
auto Own(Reply* reply) {
  return std::unique_ptr<Reply, decltype(&std::free)>(reply, &std::free);
}

class Screen {
 public:
  Screen() { Own(xcb_xfixes_query_version_reply(connection, xcb_xfixes_query_version(connection, 4, 0), nullptr)); }
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;
  ~Screen() { xcb_disconnect(connection); }

  // A window of this process or another, as toolkits open it.
  xcb_window_t OpenWindow(const xcb_rectangle_t& area,
                          std::uint32_t process = static_cast<std::uint32_t>(getpid())) const {
    const xcb_window_t window = MakeWindow(area, root);
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, Atom("_NET_WM_PID"), XCB_ATOM_CARDINAL, 32, 1,
                        &process);
    // Asked again: a window manager that is starting up may miss it.
    EXPECT_TRUE(WaitUntil([&] {
      xcb_map_window(connection, window);
      return std::ranges::count(Windows(), window) == 1;
    })) << "a window manager that takes windows";
    return window;
  }
  // What the user does, in xdotool's words, such as "key alt+p".
  static std::string Do(const std::string& actions) {
    return RunProgram({"sh", "-c", "xdotool " + actions + " 2>/dev/null"}).output;
  }
  // Letters, digits and "\t\n\033 @./-": Tab, Enter, Esc ...
  static void Type(const std::string& text) {
    static const std::map<char, std::string> names = {
        {'\t', "Tab"}, {'\n', "Return"}, {'\033', "Escape"}, {' ', "space"},
        {'@', "at"},   {'.', "period"},  {'/', "slash"},     {'-', "minus"},
    };
    std::string keys;
    for (const char character : text) {
      const auto name = names.find(character);
      keys += ' ' + (name != names.end() ? name->second : std::string(1, character));
    }
    Do("key" + keys);
  }
  // The window with this title, 0 while there is none.
  xcb_window_t Find(const std::string& title) const {
    for (const xcb_window_t window : Windows()) {
      const auto ask = xcb_get_property(connection, 0, window, Atom("_NET_WM_NAME"), XCB_GET_PROPERTY_TYPE_ANY, 0, 99);
      const auto name = Own(xcb_get_property_reply(connection, ask, nullptr));
      if (name == nullptr) continue;
      const auto length = static_cast<std::size_t>(xcb_get_property_value_length(name.get()));
      if (title == std::string_view(static_cast<const char*>(xcb_get_property_value(name.get())), length))
        return window;
    }
    return 0;
  }
  // The window with this title, once it has the input.
  xcb_window_t Await(const std::string& title) const {
    xcb_window_t found = 0;
    EXPECT_TRUE(WaitUntil([&] {
      found = Find(title);
      if (found == 0) return false;
      const auto focus = Own(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
      if (focus->focus == found) return true;
      // A window manager need not give a new window the input; the user clicks on it then.
      Do("windowactivate " + std::to_string(found));
      return false;
    })) << title;
    return found;
  }
  void TypeInto(const std::string& title, const std::string& text) const {
    Await(title);
    Type(text);
  }
  void Move(xcb_window_t window, int x, int y) const {
    Do("windowmove " + std::to_string(window) + " " + std::to_string(x) + " " + std::to_string(y));
    EXPECT_TRUE(WaitUntil([&] { return std::abs(AreaOf(window).x - x) < 30; })) << "window moved to " << x;
  }

  // Its client area on the screen.
  xcb_rectangle_t AreaOf(xcb_window_t window) const {
    const auto askSize = xcb_get_geometry(connection, window);
    const auto askPlace = xcb_translate_coordinates(connection, window, root, 0, 0);
    const auto size = Own(xcb_get_geometry_reply(connection, askSize, nullptr));
    const auto place = Own(xcb_translate_coordinates_reply(connection, askPlace, nullptr));
    if (size == nullptr || place == nullptr) return {};
    return {place->dst_x, place->dst_y, size->width, size->height};
  }
  // The 32-bit numbers of a property, such as the owner's id in WM_TRANSIENT_FOR.
  std::vector<std::uint32_t> Property(xcb_window_t window, const std::string& name) const {
    const auto ask = xcb_get_property(connection, 0, window, Atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 16);
    const auto reply = Own(xcb_get_property_reply(connection, ask, nullptr));
    if (reply == nullptr || reply->format != 32) return {};
    const auto* words = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {words, words + reply->value_len};
  }
  // All that the window manager has.
  std::vector<xcb_window_t> Windows() const { return Property(root, "_NET_CLIENT_LIST"); }
  // Its pixels.
  std::vector<std::uint32_t> ShownCursor() const {
    const auto ask = xcb_xfixes_get_cursor_image(connection);
    const auto image = Own(xcb_xfixes_get_cursor_image_reply(connection, ask, nullptr));
    const std::uint32_t* pixels = xcb_xfixes_get_cursor_image_cursor_image(image.get());
    return {pixels, pixels + xcb_xfixes_get_cursor_image_cursor_image_length(image.get())};
  }

 private:
  static xcb_connection_t* Connect() {
    xcb_connection_t* const opened = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(opened) != 0) throw std::runtime_error("no X server");
    return opened;
  }
  xcb_atom_t Atom(const std::string& name) const {
    const auto ask = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    return Own(xcb_intern_atom_reply(connection, ask, nullptr))->atom;
  }
  xcb_window_t MakeWindow(const xcb_rectangle_t& area, xcb_window_t parent) const {
    const xcb_window_t window = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, parent, area.x, area.y, area.width, area.height, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    return window;
  }

  const Process server{{"Xvfb", "-displayfd", "1", "-screen", "0", "2048x768x24", "-nolisten", "tcp", "-noreset"}};
  const ScopedVariable display{"DISPLAY", ":" + server.ReadLine()};
  const Process windowManager{{"openbox", "--sm-disable", "--config-file", NV_OPENBOX_CONFIGURATION}, true};
  xcb_connection_t* const connection = Connect();
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;

 public:
  const xcb_window_t hostWindow = OpenWindow({1200, 60, 700, 650});
  const xcb_window_t partOfHostWindow = MakeWindow({5, 5, 50, 50}, hostWindow);
};

}  // namespace nvsupport::testing

#endif
