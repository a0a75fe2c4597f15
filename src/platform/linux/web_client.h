// The web client: HTTP/1.1, pull-style reads.
#ifndef NVSUPPORT_PLATFORM_LINUX_WEB_CLIENT_H
#define NVSUPPORT_PLATFORM_LINUX_WEB_CLIENT_H

#include "types.h"

using HINTERNET = void*;
using INTERNET_PORT = WORD;

inline constexpr DWORD INTERNET_OPEN_TYPE_PRECONFIG = 0;
inline constexpr DWORD INTERNET_SERVICE_HTTP = 3;
inline constexpr INTERNET_PORT INTERNET_DEFAULT_HTTP_PORT = 80;
inline constexpr INTERNET_PORT INTERNET_DEFAULT_HTTPS_PORT = 443;

inline constexpr DWORD INTERNET_FLAG_PRAGMA_NOCACHE = 0x00000100;
inline constexpr DWORD INTERNET_FLAG_RESYNCHRONIZE = 0x00000800;
inline constexpr DWORD INTERNET_FLAG_NO_COOKIES = 0x00080000;
inline constexpr DWORD INTERNET_FLAG_NO_AUTO_REDIRECT = 0x00200000;
inline constexpr DWORD INTERNET_FLAG_SECURE = 0x00800000;
inline constexpr DWORD INTERNET_FLAG_NO_CACHE_WRITE = 0x04000000;
inline constexpr DWORD INTERNET_FLAG_RELOAD = 0x80000000;

inline constexpr DWORD HTTP_QUERY_CONTENT_TYPE = 1;
inline constexpr DWORD HTTP_QUERY_CONTENT_LENGTH = 5;
inline constexpr DWORD HTTP_QUERY_STATUS_CODE = 19;
inline constexpr DWORD HTTP_QUERY_CONTENT_RANGE = 53;
inline constexpr DWORD HTTP_QUERY_FLAG_NUMBER = 0x20000000;

HINTERNET InternetOpenA(LPCSTR agent, DWORD accessType, LPCSTR proxy, LPCSTR proxyBypass, DWORD flags);
HINTERNET InternetConnectA(HINTERNET internet, LPCSTR host, INTERNET_PORT port, LPCSTR user, LPCSTR password,
                           DWORD service, DWORD flags, DWORD_PTR context);
HINTERNET HttpOpenRequestA(HINTERNET connection, LPCSTR verb, LPCSTR path, LPCSTR version, LPCSTR referrer,
                           LPCSTR* acceptTypes, DWORD flags, DWORD_PTR context);
BOOL HttpSendRequestA(HINTERNET request, LPCSTR headers, DWORD headersLength, LPVOID body, DWORD bodyLength);
BOOL HttpQueryInfoA(HINTERNET request, DWORD infoLevel, LPVOID buffer, LPDWORD size, LPDWORD index);
BOOL InternetReadFile(HINTERNET request, LPVOID buffer, DWORD size, LPDWORD read);
BOOL InternetCloseHandle(HINTERNET handle);

#endif
