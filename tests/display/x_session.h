// A screen of a test's own (Xvfb on a free display number, with or without a window manager) and the user before it,
// whom xdotool plays. What is waited for comes within 20 seconds, or the test fails.
#ifndef NVSUPPORT_TESTS_DISPLAY_X_SESSION_H
#define NVSUPPORT_TESTS_DISPLAY_X_SESSION_H

#include <xcb/xcb.h>

#include <memory>
#include <string>
#include <vector>

#include "process.h"

namespace nvsupport::testing {

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

  explicit XSession(Manager manager = Manager::none);
  XSession(const XSession&) = delete;
  XSession& operator=(const XSession&) = delete;
  ~XSession() { xcb_disconnect(connection); }

  // The environment of a program on this screen.
  const std::map<std::string, std::string>& Environment() const { return environment; }
  // Ends the X server under its programs; nothing can be asked of the screen any more.
  void End() { server.reset(); }

  // Runs a command of the shell on the screen; gives what it prints.
  std::string Run(const std::string& command) const;
  // What the user does, in xdotool's words, such as "key alt+p".
  std::string Do(const std::string& actions) const { return Run("xdotool " + actions); }
  void Type(const std::string& text) const;  // letters, digits and "\t\n\033 !@./-": Tab, Enter, Esc ...
  void CloseBox(xcb_window_t window) const;
  void Drag(xcb_window_t window, Place from, Place by) const;

  // The visible window with this title, once it has the input.
  xcb_window_t Await(const std::string& title) const;
  bool IsGone(xcb_window_t window) const;
  // Its client area on the screen.
  Area AreaOf(xcb_window_t window) const;
  // The 32-bit numbers of a property, such as the owner's id in WM_TRANSIENT_FOR.
  std::vector<std::uint32_t> Property(xcb_window_t window, const std::string& name) const;
  // A window of the test's own, as a host without Qt has one; 0: at the top level.
  xcb_window_t MakeWindow(const Area& area, xcb_window_t parent = 0) const;

  // Its pixels.
  std::vector<std::uint32_t> ShownCursor() const;
  // How often the cursor changed on the screen since the last call.
  int CursorChanges() const;

 private:
  xcb_atom_t Atom(const std::string& text) const;

  std::unique_ptr<Process> server;
  std::unique_ptr<Process> windowManager;
  std::map<std::string, std::string> environment;
  xcb_connection_t* connection = nullptr;
  xcb_window_t root = 0;
};

}  // namespace nvsupport::testing

#endif
