// What a soaking host did last, for whoever has to find out how an answer came to be wrong.
#ifndef NVSUPPORT_FUZZ_SOAK_EVENTS_H
#define NVSUPPORT_FUZZ_SOAK_EVENTS_H

namespace soak {

// Notes an event. As printf; any thread.
[[gnu::format(printf, 1, 2)]] void Event(const char* format, ...);

// Tells what is wrong and the last twenty events on standard output, and ends the process with 1.
[[noreturn, gnu::format(printf, 1, 2)]] void Fail(const char* format, ...);

}  // namespace soak

#endif
