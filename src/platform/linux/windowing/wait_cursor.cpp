#include "wait_cursor.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xcb_cursor.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

#include "base/process_wide.h"

namespace windowing {
namespace {

// The address of a function, which converts to every type of function pointer.
struct Function {
  template <class Type>
  operator Type*() const {
    return reinterpret_cast<Type*>(address);
  }
  void* address;
};

class Library {
 public:
  Library(const char* name, int mode) : handle(dlopen(name, RTLD_LAZY | RTLD_LOCAL | mode)) {}
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() {
    if (handle != nullptr) dlclose(handle);
  }

  bool IsThere() const { return handle != nullptr; }
  Function operator()(const char* name) const { return {handle != nullptr ? dlsym(handle, name) : nullptr}; }

 private:
  void* const handle;
};

// The library of the X server, if the host has loaded it: this module is not linked with it.
struct Xcb {
  const Library library{"libxcb.so.1", RTLD_NOLOAD};
  decltype(&xcb_connect) connect = library("xcb_connect");
  decltype(&xcb_connection_has_error) hasError = library("xcb_connection_has_error");
  decltype(&xcb_disconnect) disconnect = library("xcb_disconnect");
  decltype(&xcb_flush) flush = library("xcb_flush");
  decltype(&xcb_get_setup) getSetup = library("xcb_get_setup");
  decltype(&xcb_setup_roots_iterator) roots = library("xcb_setup_roots_iterator");
  decltype(&xcb_screen_next) nextScreen = library("xcb_screen_next");
  decltype(&xcb_intern_atom) internAtom = library("xcb_intern_atom");
  decltype(&xcb_intern_atom_reply) internAtomReply = library("xcb_intern_atom_reply");
  decltype(&xcb_get_property) getProperty = library("xcb_get_property");
  decltype(&xcb_get_property_reply) getPropertyReply = library("xcb_get_property_reply");
  decltype(&xcb_get_property_value) getPropertyValue = library("xcb_get_property_value");
  decltype(&xcb_query_tree) queryTree = library("xcb_query_tree");
  decltype(&xcb_query_tree_reply) queryTreeReply = library("xcb_query_tree_reply");
  decltype(&xcb_query_tree_children) treeChildren = library("xcb_query_tree_children");
  decltype(&xcb_query_pointer) queryPointer = library("xcb_query_pointer");
  decltype(&xcb_query_pointer_reply) queryPointerReply = library("xcb_query_pointer_reply");
  decltype(&xcb_generate_id) generateId = library("xcb_generate_id");
  decltype(&xcb_open_font) openFont = library("xcb_open_font");
  decltype(&xcb_create_glyph_cursor) createGlyphCursor = library("xcb_create_glyph_cursor");
  decltype(&xcb_create_window) createWindow = library("xcb_create_window");
  decltype(&xcb_map_window) mapWindow = library("xcb_map_window");
};

template <class Reply>
auto Own(Reply* reply) {
  return std::unique_ptr<Reply, decltype(&std::free)>(reply, &std::free);
}

class WaitCursor {
 public:
  WaitCursor() : connection(xcb.connect(nullptr, &screenNumber)) {}
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;
  ~WaitCursor() { xcb.disconnect(connection); }

  void CoverWindows() {
    if (xcb.hasError(connection) != 0) return;
    xcb_screen_iterator_t screens = xcb.roots(xcb.getSetup(connection));
    for (; screenNumber > 0 && screens.rem > 1; --screenNumber) xcb.nextScreen(&screens);
    screen = screens.data;
    const xcb_cursor_t cursor = LoadCursor();
    const auto own = static_cast<std::uint32_t>(getpid());
    for (const xcb_window_t window : TopLevelWindows()) {
      if (Numbers(window, "_NET_WM_PID") == std::vector{own}) Cover(window, cursor);
    }
    xcb.flush(connection);
  }

  std::optional<POINT> Position() const {
    if (screen == nullptr) return std::nullopt;
    const auto reply = Own(xcb.queryPointerReply(connection, xcb.queryPointer(connection, screen->root), nullptr));
    return reply != nullptr ? std::optional(POINT{reply->root_x, reply->root_y}) : std::nullopt;
  }

 private:
  // From the user's theme, or else from the server's cursor font.
  xcb_cursor_t LoadCursor() const {
    const Library library("libxcb-cursor.so.0", 0);
    const decltype(&xcb_cursor_context_new) open = library("xcb_cursor_context_new");
    const decltype(&xcb_cursor_load_cursor) load = library("xcb_cursor_load_cursor");
    const decltype(&xcb_cursor_context_free) close = library("xcb_cursor_context_free");
    xcb_cursor_context_t* theme = nullptr;
    if (library.IsThere() && open(connection, screen, &theme) >= 0) {
      const xcb_cursor_t cursor = load(theme, "watch");
      close(theme);
      return cursor;
    }
    constexpr std::string_view fontName = "cursor";
    constexpr std::uint16_t watch = 150;  // the glyph behind it is its mask
    const xcb_font_t font = xcb.generateId(connection);
    const xcb_cursor_t cursor = xcb.generateId(connection);
    xcb.openFont(connection, font, fontName.size(), fontName.data());
    xcb.createGlyphCursor(connection, cursor, font, font, watch, watch + 1, 0, 0, 0, 0xFFFF, 0xFFFF, 0xFFFF);
    return cursor;
  }

  // The 32-bit numbers of a window's property; empty if it has no such property.
  std::vector<std::uint32_t> Numbers(xcb_window_t window, std::string_view name) const {
    constexpr std::uint32_t most = 4096;
    const auto askAtom = xcb.internAtom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const auto atom = Own(xcb.internAtomReply(connection, askAtom, nullptr));
    if (atom == nullptr) return {};
    const auto ask = xcb.getProperty(connection, 0, window, atom->atom, XCB_GET_PROPERTY_TYPE_ANY, 0, most);
    const auto reply = Own(xcb.getPropertyReply(connection, ask, nullptr));
    if (reply == nullptr || reply->format != 32) return {};
    const auto* numbers = static_cast<const std::uint32_t*>(xcb.getPropertyValue(reply.get()));
    return {numbers, numbers + reply->value_len};
  }

  // The windows that a window manager lists; without one, those right below the root window.
  std::vector<xcb_window_t> TopLevelWindows() const {
    std::vector<xcb_window_t> managed = Numbers(screen->root, "_NET_CLIENT_LIST");
    if (!managed.empty()) return managed;
    const auto tree = Own(xcb.queryTreeReply(connection, xcb.queryTree(connection, screen->root), nullptr));
    if (tree == nullptr) return {};
    const xcb_window_t* children = xcb.treeChildren(tree.get());
    return {children, children + tree->children_len};
  }

  // An input-only window that selects no events: clicks still go to the window that it covers.
  void Cover(xcb_window_t window, xcb_cursor_t cursor) const {
    constexpr std::uint16_t largest = 0x7FFF;  // the server shows no more of it than its parent's area
    const xcb_window_t cover = xcb.generateId(connection);
    xcb.createWindow(connection, 0, cover, window, 0, 0, largest, largest, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                     XCB_COPY_FROM_PARENT, XCB_CW_CURSOR, &cursor);
    xcb.mapWindow(connection, cover);
  }

  const Xcb xcb;
  int screenNumber = 0;
  xcb_connection_t* const connection;
  xcb_screen_t* screen = nullptr;  // null without a server
};

// Process-wide, because another thread may end the process while the cursor shows.
base::ProcessWide<std::unique_ptr<WaitCursor>> shown;

}  // namespace

bool MayHaveWindows() {
  const char* const server = std::getenv("DISPLAY");
  if (server == nullptr || *server == '\0') return false;
  // By name, because dlopen looks for the file of a library that is not loaded, at each exchange.
  const auto isXcb = [](dl_phdr_info* loaded, std::size_t, void*) {
    return std::string_view(loaded->dlpi_name).ends_with("/libxcb.so.1") ? 1 : 0;
  };
  return dl_iterate_phdr(isXcb, nullptr) != 0;
}

// Without memory no cursor is shown; there is nobody to tell.
void ShowWaitCursor() try {
  if (*shown != nullptr || !MayHaveWindows()) return;
  *shown = std::make_unique<WaitCursor>();
  (*shown)->CoverWindows();
} catch (const std::bad_alloc&) {
  HideWaitCursor();
}

void HideWaitCursor() {
  (*shown).reset();
}

std::optional<POINT> WaitCursorPosition() {
  return *shown != nullptr ? (*shown)->Position() : std::nullopt;
}

}  // namespace windowing
