#include "ui/window.h"

#include <cstdint>
#include <exception>

#include "ui/instance_subclasser.h"

namespace nvsupport {
namespace {

// A message holds two signed 16-bit coordinates; they are negative left of the client area and above it.
int SignedLow(WPARAM value) {
  return static_cast<std::int16_t>(LOWORD(value));
}
int SignedHigh(WPARAM value) {
  return static_cast<std::int16_t>(HIWORD(value));
}

}  // namespace

Window::Window(HWND window) {
  if (!IsWindow(window)) return;
  hwnd = window;
  windowSubclasser.subclass(window, this);
}

Window::~Window() {
  if (IsWindow(hwnd)) DestroyWindow(hwnd);
}

LRESULT Window::onNotify(WPARAM wParam, LPARAM lParam) {
  return windowSubclasser.callPrevious(hwnd, WM_NOTIFY, wParam, lParam);
}

LRESULT Window::handleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  const auto pair = static_cast<WPARAM>(lParam);
  switch (message) {
    case WM_DESTROY:
      try {
        onDestroy();
      } catch (const std::exception&) {
        // Even without memory the window goes, and its record with it.
      }
      break;
    case WM_SIZE:
      onSize(LOWORD(pair), HIWORD(pair));
      break;
    case WM_PAINT:
      onPaint();
      break;
    case WM_NOTIFY:
      return onNotify(wParam, lParam);
    case WM_COMMAND:
      onCommand(LOWORD(wParam), reinterpret_cast<HWND>(lParam), HIWORD(wParam));
      break;
    case WM_TIMER:
      onTimer(wParam);
      break;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
      onLeftButton(message == WM_LBUTTONDBLCLK, SignedLow(pair), SignedHigh(pair), wParam);
      break;
    default:
      break;
  }
  const LRESULT result = windowSubclasser.callPrevious(hwnd, message, wParam, lParam);
  if (message == WM_DESTROY) hwnd = nullptr;
  return result;
}

LRESULT CALLBACK Window::wndProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const SubclassRecord* const record = windowSubclasser.find(window);
  if (record == nullptr || record->object == nullptr) FatalAppExitA(0, "Window not found in Window::wndProc\n");
  return record->object->handleMessage(message, wParam, lParam);
}

}  // namespace nvsupport
