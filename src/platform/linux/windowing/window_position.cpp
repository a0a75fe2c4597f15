// Where windows stand, in pixels of the screen.
#include <optional>

#include "display_selection.h"
#include "window_tree.h"
#include "windowing.h"

namespace windowing {
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

// The client area of a window. Null and the desktop window stand for the screen; the host's windows count as all client
// area.
std::optional<POINT> OriginOf(Display& display, HWND handle) {
  if (handle == nullptr || handle == GetDesktopWindow()) return POINT{0, 0};
  if (FindDialog(handle) != nullptr) return display.ClientOrigin(handle);
  const std::optional<RECT> rectangle = RectOf(display, handle);
  if (!rectangle) return std::nullopt;
  return POINT{rectangle->left, rectangle->top};
}

}  // namespace
}  // namespace windowing

BOOL GetWindowRect(HWND window, RECT* rectangle) {
  windowing::Display* display = windowing::OpenedDisplay();
  if (display == nullptr) return FALSE;
  const std::optional<RECT> found = windowing::RectOf(*display, window);
  if (!found) return FALSE;
  *rectangle = *found;
  return TRUE;
}

int MapWindowPoints(HWND from, HWND to, POINT* points, UINT count) {
  windowing::Display* display = windowing::OpenedDisplay();
  if (display == nullptr) return 0;
  const std::optional<POINT> source = windowing::OriginOf(*display, from);
  const std::optional<POINT> target = windowing::OriginOf(*display, to);
  if (!source || !target) return 0;
  const POINT by{source->x - target->x, source->y - target->y};
  for (UINT i = 0; i < count; ++i) {
    points[i].x += by.x;
    points[i].y += by.y;
  }
  return static_cast<int>(windowing::PackWords(static_cast<WORD>(by.x), static_cast<WORD>(by.y)));
}

// Only moves a window; its size and its place above or below others stay.
BOOL SetWindowPos(HWND handle, HWND, int x, int y, int, int, UINT flags) {
  windowing::Display* display = windowing::OpenedDisplay();
  windowing::Window* window = windowing::Find(handle);
  if (display == nullptr || window == nullptr || (flags & SWP_NOSIZE) == 0) return FALSE;
  if (window->dialog) {
    display->MoveDialogWindow(handle, {x, y});
  } else {
    RECT& place = window->rectangle;
    place = windowing::MovedBy(place, {x - place.left, y - place.top});
    display->MoveControl(handle, place);
  }
  return TRUE;
}

int GetSystemMetrics(int index) {
  windowing::Display* display = windowing::OpenedDisplay();
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

// A monitor's handle is the number of its screen, from 1.
HMONITOR MonitorFromWindow(HWND window, DWORD) {
  windowing::Display* display = windowing::OpenedDisplay();
  RECT place{};
  if (display == nullptr || !GetWindowRect(window, &place)) return nullptr;
  return reinterpret_cast<HMONITOR>(static_cast<UINT_PTR>(display->ScreenOf(place) + 1));
}

BOOL GetMonitorInfoA(HMONITOR monitor, MONITORINFO* info) {
  windowing::Display* display = windowing::OpenedDisplay();
  if (display == nullptr || monitor == nullptr) return FALSE;
  info->rcWork = display->WorkArea(static_cast<int>(reinterpret_cast<UINT_PTR>(monitor)) - 1);
  return TRUE;
}
