// An allocator of the tests' own for C++ and libcurl: it refuses what a test says. The program that links it has it.
#ifndef NVSUPPORT_TESTS_FAULT_MEMORY_SHORTAGE_H
#define NVSUPPORT_TESTS_FAULT_MEMORY_SHORTAGE_H

#include <functional>

namespace nvsupport::testing {

// Goes the road with memory running out at each place in turn, once for a single request and once for all behind it as
// well, and looks after each time. An exception that leaves `road` ends the program, as it would the host.
void GoShortOfMemory(
    const std::function<void()>& road, const std::function<void()>& look = [] {});

}  // namespace nvsupport::testing

#endif
