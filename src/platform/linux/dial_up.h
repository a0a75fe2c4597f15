// Dial-up connections, which are no matter of programs on this system: the network is there or it is not.
#ifndef NVSUPPORT_PLATFORM_LINUX_DIAL_UP_H
#define NVSUPPORT_PLATFORM_LINUX_DIAL_UP_H

namespace platform {

struct DialUp {
  void ConnectIfNeeded() {}
};

}  // namespace platform

#endif
