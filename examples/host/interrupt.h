// Ctrl-C as a question that a transfer's callback can ask, instead of a sudden end. A second Ctrl-C ends the program.
#ifndef NVHOST_INTERRUPT_H
#define NVHOST_INTERRUPT_H

namespace nvhost {

// From here on Ctrl-C is noted.
void WatchInterrupt();
bool Interrupted();

}  // namespace nvhost

#endif
