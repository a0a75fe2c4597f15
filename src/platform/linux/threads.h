// Threads and events, over the standard library.
#ifndef NVSUPPORT_PLATFORM_LINUX_THREADS_H
#define NVSUPPORT_PLATFORM_LINUX_THREADS_H

#include "types.h"

inline constexpr DWORD INFINITE = 0xFFFFFFFF;
inline constexpr DWORD WAIT_OBJECT_0 = 0;
inline constexpr DWORD WAIT_TIMEOUT = 0x102;
inline constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;

using LPTHREAD_START_ROUTINE = DWORD(WINAPI*)(LPVOID);

HANDLE CreateThread(struct SECURITY_ATTRIBUTES* security, std::uintptr_t stackSize, LPTHREAD_START_ROUTINE start,
                    LPVOID parameter, DWORD flags, LPDWORD threadId);
HANDLE CreateEventA(struct SECURITY_ATTRIBUTES* security, BOOL manualReset, BOOL initialState, LPCSTR name);
BOOL SetEvent(HANDLE event);
// Waits for an event or for the end of a thread, in milliseconds.
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);
DWORD GetCurrentThreadId();

#endif
