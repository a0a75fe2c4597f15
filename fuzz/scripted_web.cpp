// The web client as the library calls it, with one reply for all requests and no network.
#include <algorithm>
#include <cstring>

#include "fuzz.h"
#include "platform/platform.h"

namespace {

std::string_view answer;
std::string_view rest;

// Handles are not looked at.
HINTERNET AnyHandle() {
  static int object;
  return reinterpret_cast<HINTERNET>(&object);
}

}  // namespace

void nvsupport::fuzz::AnswerWith(std::string_view reply) {
  answer = reply;
}

HINTERNET InternetOpenA(LPCSTR, DWORD, LPCSTR, LPCSTR, DWORD) {
  return AnyHandle();
}

HINTERNET InternetConnectA(HINTERNET, LPCSTR, INTERNET_PORT, LPCSTR, LPCSTR, DWORD, DWORD, DWORD_PTR) {
  return AnyHandle();
}

HINTERNET HttpOpenRequestA(HINTERNET, LPCSTR, LPCSTR, LPCSTR, LPCSTR, LPCSTR*, DWORD, DWORD_PTR) {
  return AnyHandle();
}

BOOL HttpSendRequestA(HINTERNET, LPCSTR, DWORD, LPVOID, DWORD) {
  rest = answer;
  return TRUE;
}

BOOL HttpQueryInfoA(HINTERNET, DWORD, LPVOID, LPDWORD, LPDWORD) {
  return FALSE;
}

// In pieces of odd sizes, so that items lie across them.
BOOL InternetReadFile(HINTERNET, LPVOID buffer, DWORD size, LPDWORD read) {
  *read = static_cast<DWORD>(std::min<std::size_t>({size, rest.size(), 61}));
  std::memcpy(buffer, rest.data(), *read);
  rest.remove_prefix(*read);
  return TRUE;
}

BOOL InternetCloseHandle(HINTERNET) {
  return TRUE;
}
