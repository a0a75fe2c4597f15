#include "window_tree.h"

#include <algorithm>
#include <map>

#include "base/process_wide.h"
#include "display_selection.h"

namespace windowing {
namespace {

constexpr std::uintptr_t largestForeignId = 0xFFFFFFFF;
constexpr std::uintptr_t desktopId = largestForeignId + 1;
constexpr std::uintptr_t handleStep = 4;

struct WindowTable {
  std::map<HWND, Window> windows;
  std::uintptr_t last = desktopId;
};

WindowTable& Table() {
  static base::ProcessWide<WindowTable> table;
  return *table;
}

}  // namespace

Window& NewWindow() {
  WindowTable& table = Table();
  table.last += handleStep;
  const HWND handle = reinterpret_cast<HWND>(table.last);
  Window& window = table.windows[handle];
  window.handle = handle;
  return window;
}

void RemoveWindow(HWND handle) {
  Table().windows.erase(handle);
}

Window* Find(HWND handle) {
  auto& windows = Table().windows;
  const auto found = windows.find(handle);
  return found != windows.end() ? &found->second : nullptr;
}

Window* FindDialog(HWND handle) {
  Window* window = Find(handle);
  return window != nullptr && window->dialog ? window : nullptr;
}

Window* FindControl(HWND handle, ControlKind kind) {
  Window* window = Find(handle);
  return window != nullptr && !window->dialog && window->kind == kind ? window : nullptr;
}

HWND DialogOf(HWND handle) {
  const Window* window = Find(handle);
  if (window == nullptr) return nullptr;
  return window->dialog ? handle : window->parent;
}

HWND OwnedDialog(HWND owner) {
  for (const auto& [handle, window] : Table().windows) {
    if (window.dialog && window.dialog->owner == owner && !window.destroying) return handle;
  }
  return nullptr;
}

std::uintptr_t ForeignId(HWND handle) {
  const auto id = reinterpret_cast<std::uintptr_t>(handle);
  return id <= largestForeignId ? id : 0;
}

}  // namespace windowing

BOOL IsWindow(HWND window) {
  if (windowing::Find(window) != nullptr || (window != nullptr && window == GetDesktopWindow())) return TRUE;
  const std::uintptr_t foreign = windowing::ForeignId(window);
  windowing::Display* display = windowing::OpenedDisplay();
  return foreign != 0 && display != nullptr && display->ForeignRect(foreign).has_value();
}

HWND GetParent(HWND window) {
  const windowing::Window* found = windowing::Find(window);
  if (found == nullptr) return nullptr;
  if (!found->dialog) return found->parent;
  return (found->style & (WS_CHILD | windowing::stylePopup)) != 0 ? found->dialog->owner : nullptr;
}

HWND GetWindow(HWND window, UINT relation) {
  const windowing::Window* found = windowing::FindDialog(window);
  if (found == nullptr || relation != GW_OWNER || (found->style & WS_CHILD) != 0) return nullptr;
  return found->dialog->owner;
}

HWND GetDesktopWindow() {
  return reinterpret_cast<HWND>(windowing::desktopId);
}

HWND GetDlgItem(HWND dialog, int id) {
  const windowing::Window* found = windowing::FindDialog(dialog);
  if (found == nullptr) return nullptr;
  for (const HWND control : found->dialog->controls) {
    const windowing::Window* window = windowing::Find(control);
    if (window != nullptr && window->id == id) return control;
  }
  return nullptr;
}

BOOL EnumChildWindows(HWND parent, WNDENUMPROC callback, LPARAM lParam) {
  const windowing::Window* found = windowing::FindDialog(parent);
  if (found == nullptr) return FALSE;
  // A copy, because the callback may destroy the windows.
  const std::vector<HWND> controls = found->dialog->controls;
  for (const HWND control : controls) {
    if (windowing::Find(control) != nullptr && callback(control, lParam) == 0) return FALSE;
  }
  return TRUE;
}

LONG_PTR GetWindowLongPtrA(HWND window, int index) {
  const windowing::Window* found = windowing::Find(window);
  if (found == nullptr) return 0;
  switch (index) {
    case GWL_STYLE:
      return found->style;
    case GWLP_WNDPROC:
      return reinterpret_cast<LONG_PTR>(found->procedure);
    case GWLP_USERDATA:
      return found->userData;
    default:
      return 0;
  }
}

LONG_PTR SetWindowLongPtrA(HWND window, int index, LONG_PTR value) {
  windowing::Window* found = windowing::Find(window);
  if (found == nullptr) return 0;
  const LONG_PTR before = GetWindowLongPtrA(window, index);
  switch (index) {
    case GWL_STYLE:
      found->style = value;
      break;
    case GWLP_WNDPROC:
      found->procedure = reinterpret_cast<WNDPROC>(value);
      break;
    case GWLP_USERDATA:
      found->userData = value;
      break;
    default:
      break;
  }
  return before;
}

// Sending messages, and the published functions that do no more than send one.

LRESULT CallWindowProcA(WNDPROC procedure, HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return procedure != nullptr ? procedure(window, message, wParam, lParam) : 0;
}

LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const windowing::Window* found = windowing::Find(window);
  return found != nullptr ? CallWindowProcA(found->procedure, window, message, wParam, lParam) : 0;
}

LRESULT SendDlgItemMessageA(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam) {
  return SendMessageA(GetDlgItem(dialog, id), message, wParam, lParam);
}

BOOL SetWindowTextA(HWND window, LPCSTR text) {
  return static_cast<BOOL>(SendMessageA(window, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)));
}

int GetWindowTextA(HWND window, LPSTR buffer, int size) {
  if (buffer == nullptr || size <= 0) return 0;
  buffer[0] = '\0';
  return static_cast<int>(
      SendMessageA(window, WM_GETTEXT, static_cast<WPARAM>(size), reinterpret_cast<LPARAM>(buffer)));
}

UINT GetDlgItemTextA(HWND dialog, int id, LPSTR buffer, int size) {
  return static_cast<UINT>(GetWindowTextA(GetDlgItem(dialog, id), buffer, size));
}
