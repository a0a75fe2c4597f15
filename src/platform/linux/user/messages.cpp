// Sending messages, and the published functions that are messages in other clothes.
#include "user.h"
#include "window_tree.h"

LRESULT CallWindowProcA(WNDPROC procedure, HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return procedure != nullptr ? procedure(window, message, wParam, lParam) : 0;
}

LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const user::Window* found = user::Find(window);
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
