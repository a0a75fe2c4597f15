#include "ui/placement.h"

#include <algorithm>

namespace nvsupport {
namespace {

// Moves only: size, order and active window stay, and nothing of the old place is copied.
constexpr UINT moveFlags = SWP_NOSIZE | SWP_NOZORDER | SWP_NOCOPYBITS | SWP_NOACTIVATE;

void MoveWindowTo(HWND window, LONG x, LONG y) {
  SetWindowPos(window, nullptr, static_cast<int>(x), static_cast<int>(y), 0, 0, moveFlags);
}

// The client area that a dialog's place is relative to; null stands for the screen.
HWND ReferenceOf(HWND window) {
  const HWND parent = GetParent(window);
  return parent != nullptr ? parent : GetWindow(window, GW_OWNER);
}

// Moves a stretch of `length` into [first, last) and returns its start. If it is too long it starts at `first`.
LONG KeptInside(LONG start, LONG length, LONG first, LONG last) {
  return std::max(std::min(start, last - length), first);
}

// The work area of the screen that a window stands on, which need not be the primary one.
RECT WorkAreaOf(HWND window) {
  MONITORINFO screen{};
  screen.cbSize = sizeof screen;
  GetMonitorInfoA(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &screen);
  return screen.rcWork;
}

void KeepInside(HWND window, const RECT& area) {
  RECT place{};
  GetWindowRect(window, &place);
  MoveWindowTo(window, KeptInside(place.left, place.right - place.left, area.left, area.right),
               KeptInside(place.top, place.bottom - place.top, area.top, area.bottom));
}

}  // namespace

void PlaceDialog(HWND window, std::uint32_t dialogId) {
  CentreOnOwner(window);
  if (const auto entry = dialogPositions.find(dialogId); entry != dialogPositions.end()) {
    POINT point = entry->second;
    MapWindowPoints(ReferenceOf(window), nullptr, &point, 1);
    MoveWindowTo(window, point.x, point.y);
    KeepOnWorkArea(window);
  }
}

void RememberPosition(HWND window, std::uint32_t dialogId) {
  RECT place{};
  GetWindowRect(window, &place);
  // Both corners are mapped: in an owner that is laid out from right to left they change sides.
  POINT corners[] = {{place.left, place.top}, {place.right, place.bottom}};
  MapWindowPoints(nullptr, ReferenceOf(window), corners, 2);
  dialogPositions[dialogId] = corners[0];
}

void CentreOnOwner(HWND window) {
  HWND reference = ReferenceOf(window);
  if (!IsWindow(reference)) reference = GetDesktopWindow();
  RECT owner{};
  RECT dialog{};
  GetWindowRect(reference, &owner);
  GetWindowRect(window, &dialog);

  const LONG x = owner.left + ((owner.right - owner.left) - (dialog.right - dialog.left)) / 2;
  const LONG y = owner.top + ((owner.bottom - owner.top) - (dialog.bottom - dialog.top)) / 2;
  // The owner's frame and caption stay in sight.
  const LONG firstX = owner.left + GetSystemMetrics(SM_CXFRAME);
  const LONG firstY = owner.top + GetSystemMetrics(SM_CYFRAME) + GetSystemMetrics(SM_CYSIZE);
  MoveWindowTo(window, std::max(x, firstX), std::max(y, firstY));
  KeepInside(window, WorkAreaOf(reference));
}

void KeepOnWorkArea(HWND window) {
  KeepInside(window, WorkAreaOf(window));
}

}  // namespace nvsupport
