// The basic types of the published interface, 64-bit forms.
#ifndef NVSUPPORT_PLATFORM_LINUX_TYPES_H
#define NVSUPPORT_PLATFORM_LINUX_TYPES_H

#include <cstdint>

using BOOL = int;
using BYTE = unsigned char;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = unsigned int;
using LONG = std::int32_t;
using LONG_PTR = std::intptr_t;
using DWORD_PTR = std::uintptr_t;
using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using WPARAM = UINT_PTR;
using LPARAM = LONG_PTR;
using LRESULT = LONG_PTR;
using LPVOID = void*;
using LPCVOID = const void*;
using LPSTR = char*;
using LPCSTR = const char*;
using LPDWORD = DWORD*;

using HANDLE = void*;
using HINSTANCE = struct HINSTANCE__*;
using HMODULE = HINSTANCE;
using HWND = struct HWND__*;
using HKEY = struct HKEY__*;
using HCURSOR = struct HICON__*;

struct POINT {
  LONG x;
  LONG y;
};

struct RECT {
  LONG left;
  LONG top;
  LONG right;
  LONG bottom;
};

#define TRUE 1
#define FALSE 0
// Calling conventions, which are all one on this system.
#define CALLBACK
#define WINAPI
#define APIENTRY

inline HANDLE const INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(static_cast<INT_PTR>(-1));
inline constexpr DWORD MAX_PATH = 260;

constexpr WORD LOWORD(std::uint64_t value) {
  return static_cast<WORD>(value & 0xFFFF);
}
constexpr WORD HIWORD(std::uint64_t value) {
  return static_cast<WORD>((value >> 16) & 0xFFFF);
}

#endif
