// The clock by which the module counts how long its connections idle, wound by the host at will.
#ifndef NVSUPPORT_FUZZ_SOAK_CLOCK_H
#define NVSUPPORT_FUZZ_SOAK_CLOCK_H

namespace soak {

// As if the machine slept for so long: the clock that goes on during sleep jumps ahead, all others stay.
void Sleep(int seconds);

}  // namespace soak

#endif
