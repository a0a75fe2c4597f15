// Dial-up connections.
#ifndef NVSUPPORT_PLATFORM_WINDOWS_DIAL_UP_H
#define NVSUPPORT_PLATFORM_WINDOWS_DIAL_UP_H

namespace platform {

// Dials up for a transfer when there is no connection, and hangs up when the object is destroyed.
class DialUp {
 public:
  DialUp() = default;
  ~DialUp();
  DialUp(const DialUp&) = delete;
  DialUp& operator=(const DialUp&) = delete;

  void ConnectIfNeeded();

 private:
  bool dialled = false;  // it was asked for, which does not mean that there is a connection
};

}  // namespace platform

#endif
