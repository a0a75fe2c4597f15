// A screen of a test's own (Xvfb on a free display number, with or without a window manager) and the user before it.
// What is waited for comes within 20 seconds, or the test fails.
#ifndef NVSUPPORT_TESTS_DISPLAY_X_SESSION_H
#define NVSUPPORT_TESTS_DISPLAY_X_SESSION_H

#include <xcb/xcb.h>

#include <functional>
#include <memory>
#include <optional>
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

bool WaitUntil(const std::function<bool()>& condition);

class XSession {
 public:
  enum class Manager { none, openbox };

  explicit XSession(Manager manager);
  XSession(const XSession&) = delete;
  XSession& operator=(const XSession&) = delete;
  ~XSession();

  const std::string& Name() const { return name; }  // for DISPLAY

  // Ends the X server under its programs; nothing can be asked of the screen any more.
  void End() { server.reset(); }
  // The visible window with this title.
  xcb_window_t FindWindow(const std::string& title);
  bool IsGone(const std::string& title);
  // Its client area on the screen.
  Area AreaOf(xcb_window_t window) const;
  xcb_window_t OwnerOf(xcb_window_t window) const;
  // Whether it stands above another in the stacking order.
  bool IsAbove(xcb_window_t window, xcb_window_t other) const;
  bool HasFocus(xcb_window_t window) const;
  // A window of the test's own, as a host without Qt has one.
  xcb_window_t MakeWindow(const Area& area);
  void MoveWindow(xcb_window_t window, Place to);
  void DestroyWindow(xcb_window_t window);

  void PointAt(Place place);
  void Click(Place place);
  void Drag(xcb_window_t window, Place from, Place by);
  void Type(const std::string& text);  // ASCII; '\t' is Tab, '\n' Enter, '\033' Esc
  void TypeWithAlt(char letter);
  void CloseBox(xcb_window_t window);
  // Its pixels.
  std::vector<std::uint32_t> ShownCursor() const;
  void WatchCursor();
  // How often the cursor changed on the screen since WatchCursor or the last call.
  int CursorChanges();

 private:
  struct Key {
    std::uint8_t code = 0;
    bool shifted = false;
  };

  xcb_window_t Find(xcb_window_t parent, const std::string& title) const;
  xcb_atom_t Atom(const char* atom) const;
  std::optional<std::uint32_t> Property(xcb_window_t window, const char* property, xcb_atom_t type) const;
  void Press(std::uint8_t event, std::uint8_t detail);
  Key KeyOf(std::uint32_t symbol) const;
  void PressKey(std::uint32_t symbol, std::uint32_t heldSymbol);
  void Sync() const;

  std::unique_ptr<Process> server;
  std::unique_ptr<Process> windowManager;
  std::string name;
  xcb_connection_t* connection = nullptr;
  xcb_window_t root = 0;
};

}  // namespace nvsupport::testing

#endif
