// Windows, dialogs, messages and the cursor: the published part of the window core. Each group of functions stands in
// the file named over it.
#ifndef NVSUPPORT_PLATFORM_LINUX_WINDOWING_WINDOWING_H
#define NVSUPPORT_PLATFORM_LINUX_WINDOWING_WINDOWING_H

#include "../types.h"

using WNDPROC = LRESULT(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);
using DLGPROC = INT_PTR(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);
using WNDENUMPROC = BOOL(CALLBACK*)(HWND, LPARAM);

inline constexpr UINT WM_DESTROY = 0x0002;
inline constexpr UINT WM_MOVE = 0x0003;
inline constexpr UINT WM_SIZE = 0x0005;
inline constexpr UINT WM_SETTEXT = 0x000C;
inline constexpr UINT WM_GETTEXT = 0x000D;
inline constexpr UINT WM_GETTEXTLENGTH = 0x000E;
inline constexpr UINT WM_PAINT = 0x000F;
inline constexpr UINT WM_CLOSE = 0x0010;
inline constexpr UINT WM_SETFONT = 0x0030;
inline constexpr UINT WM_NEXTDLGCTL = 0x0028;
inline constexpr UINT WM_NOTIFY = 0x004E;
inline constexpr UINT WM_NCDESTROY = 0x0082;
inline constexpr UINT WM_INITDIALOG = 0x0110;
inline constexpr UINT WM_COMMAND = 0x0111;
inline constexpr UINT WM_TIMER = 0x0113;
inline constexpr UINT WM_LBUTTONDOWN = 0x0201;
inline constexpr UINT WM_LBUTTONDBLCLK = 0x0203;
inline constexpr UINT WM_MOUSEWHEEL = 0x020A;
inline constexpr UINT WM_MOVING = 0x0216;

inline constexpr UINT BM_GETCHECK = 0x00F0;
inline constexpr UINT BM_SETCHECK = 0x00F1;
inline constexpr UINT BM_CLICK = 0x00F5;

inline constexpr LONG_PTR WS_CHILD = 0x40000000;
inline constexpr int GWL_STYLE = -16;
inline constexpr int GWLP_WNDPROC = -4;
inline constexpr int GWLP_USERDATA = -21;
inline constexpr UINT GW_OWNER = 4;

inline constexpr int IDOK = 1;
inline constexpr int IDCANCEL = 2;
inline constexpr UINT MB_OK = 0x00;
inline constexpr UINT MB_ICONERROR = 0x10;
inline constexpr UINT MB_ICONINFORMATION = 0x40;

inline constexpr UINT SWP_NOSIZE = 0x0001;
inline constexpr UINT SWP_NOZORDER = 0x0004;
inline constexpr UINT SWP_NOACTIVATE = 0x0010;
inline constexpr UINT SWP_NOCOPYBITS = 0x0100;
inline constexpr int SM_CYSIZE = 31;
inline constexpr int SM_CXFRAME = 32;
inline constexpr int SM_CYFRAME = 33;

using HMONITOR = struct HMONITOR__*;
struct MONITORINFO {
  DWORD cbSize;
  RECT rcMonitor;  // not filled in
  RECT rcWork;
  DWORD dwFlags;  // not filled in
};
inline constexpr DWORD MONITOR_DEFAULTTONEAREST = 2;

// The number of a resource is passed as a pointer with a small value.
inline LPSTR MAKEINTRESOURCEA(WORD id) {
  return reinterpret_cast<LPSTR>(static_cast<UINT_PTR>(id));
}
inline LPSTR const IDC_WAIT = reinterpret_cast<LPSTR>(static_cast<UINT_PTR>(32514));

// modal_dialogs.cpp
INT_PTR DialogBoxParamA(HINSTANCE module, LPCSTR dialogTemplate, HWND owner, DLGPROC dialogProc, LPARAM initParam);
BOOL EndDialog(HWND dialog, INT_PTR result);
int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT type);

// window_tree.cpp
BOOL IsWindow(HWND window);
HWND GetParent(HWND window);
HWND GetWindow(HWND window, UINT relation);
HWND GetDesktopWindow();
HWND GetDlgItem(HWND dialog, int id);
BOOL EnumChildWindows(HWND parent, WNDENUMPROC callback, LPARAM lParam);
LONG_PTR GetWindowLongPtrA(HWND window, int index);
LONG_PTR SetWindowLongPtrA(HWND window, int index, LONG_PTR value);
LRESULT CallWindowProcA(WNDPROC procedure, HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT SendDlgItemMessageA(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam);
BOOL SetWindowTextA(HWND window, LPCSTR text);
int GetWindowTextA(HWND window, LPSTR buffer, int size);
UINT GetDlgItemTextA(HWND dialog, int id, LPSTR buffer, int size);

// dialog_creation.cpp
BOOL DestroyWindow(HWND window);

// window_position.cpp
BOOL GetWindowRect(HWND window, RECT* rectangle);
int MapWindowPoints(HWND from, HWND to, POINT* points, UINT count);
BOOL SetWindowPos(HWND window, HWND insertAfter, int x, int y, int width, int height, UINT flags);
int GetSystemMetrics(int index);
HMONITOR MonitorFromWindow(HWND window, DWORD whereThereIsNone);
BOOL GetMonitorInfoA(HMONITOR monitor, MONITORINFO* info);

// cursor.cpp
HCURSOR LoadCursorA(HINSTANCE module, LPCSTR name);
HCURSOR SetCursor(HCURSOR cursor);
BOOL GetCursorPos(POINT* point);
BOOL SetCursorPos(int x, int y);
BOOL AttachThreadInput(DWORD thread, DWORD toThread, BOOL attach);

#endif
