// Where windows stand, in pixels of the screen.
#include <optional>

#include "display_selection.h"
#include "styles.h"
#include "user.h"
#include "window_tree.h"

namespace user {
namespace {

RECT MovedBy(const RECT& rectangle, POINT by) {
  return {rectangle.left + by.x, rectangle.top + by.y, rectangle.right + by.x, rectangle.bottom + by.y};
}

std::optional<RECT> RectOf(Display& display, HWND handle) {
  if (handle == GetDesktopWindow()) return display.ScreenArea();
  if (FindDialog(handle) != nullptr) return display.WindowRect(handle);
  if (const Window* control = Find(handle)) return MovedBy(control->rectangle, display.ClientOrigin(control->parent));
  const std::uintptr_t foreign = ForeignId(handle);
  return foreign != 0 ? display.ForeignRect(foreign) : std::nullopt;
}

// Of the client area; null and the desktop stand for the screen. A window of the host's own is all client area.
std::optional<POINT> OriginOf(Display& display, HWND handle) {
  if (handle == nullptr || handle == GetDesktopWindow()) return POINT{0, 0};
  if (FindDialog(handle) != nullptr) return display.ClientOrigin(handle);
  const std::optional<RECT> rectangle = RectOf(display, handle);
  if (!rectangle) return std::nullopt;
  return POINT{rectangle->left, rectangle->top};
}

}  // namespace
}  // namespace user

BOOL GetWindowRect(HWND window, RECT* rectangle) {
  user::Display* display = user::OpenedDisplay();
  if (display == nullptr) return FALSE;
  const std::optional<RECT> found = user::RectOf(*display, window);
  if (!found) return FALSE;
  *rectangle = *found;
  return TRUE;
}

int MapWindowPoints(HWND from, HWND to, POINT* points, UINT count) {
  user::Display* display = user::OpenedDisplay();
  if (display == nullptr) return 0;
  const std::optional<POINT> source = user::OriginOf(*display, from);
  const std::optional<POINT> target = user::OriginOf(*display, to);
  if (!source || !target) return 0;
  const POINT by{source->x - target->x, source->y - target->y};
  for (UINT i = 0; i < count; ++i) {
    points[i].x += by.x;
    points[i].y += by.y;
  }
  return static_cast<int>(user::PackWords(static_cast<WORD>(by.x), static_cast<WORD>(by.y)));
}

// Dialogs move; nothing changes its size or its place among the windows.
BOOL SetWindowPos(HWND window, HWND, int x, int y, int, int, UINT flags) {
  user::Display* display = user::OpenedDisplay();
  if (display == nullptr || user::FindDialog(window) == nullptr || (flags & SWP_NOSIZE) == 0) return FALSE;
  display->MoveDialogWindow(window, {x, y});
  return TRUE;
}

int GetSystemMetrics(int index) {
  user::Display* display = user::OpenedDisplay();
  if (display == nullptr) return 0;
  switch (index) {
    case SM_CYSIZE:
      return display->CaptionHeight();
    case SM_CXFRAME:
    case SM_CYFRAME:
      return display->FrameWidth();
    default:
      return 0;
  }
}

BOOL SystemParametersInfoA(UINT action, UINT, LPVOID value, UINT) {
  user::Display* display = user::OpenedDisplay();
  if (display == nullptr || action != SPI_GETWORKAREA) return FALSE;
  *static_cast<RECT*>(value) = display->WorkArea();
  return TRUE;
}
