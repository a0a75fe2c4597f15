// A trace of what the platform layer does, to find out why something failed: one line per event on standard error,
// for the areas that NV_TRACE names ("web,files,display,language,registry" or "all"). Off by default. Never holds a
// body, a query, a user ID, a password or a token.
#ifndef NVSUPPORT_PLATFORM_LINUX_TRACE_H
#define NVSUPPORT_PLATFORM_LINUX_TRACE_H

namespace platform {

enum class TraceArea { web, files, display, language, registry };

// Reads the environment once.
bool IsTraced(TraceArea area);

// As printf.
[[gnu::format(printf, 2, 3)]] void Trace(TraceArea area, const char* format, ...);

}  // namespace platform

#endif
