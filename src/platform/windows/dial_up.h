// Dial-up connections.
#ifndef NVSUPPORT_PLATFORM_WINDOWS_DIAL_UP_H
#define NVSUPPORT_PLATFORM_WINDOWS_DIAL_UP_H

namespace platform {

// A dial-up connection that a transfer brings up where none is there, hung up again with the object.
class DialUp {
 public:
  DialUp() = default;
  ~DialUp();
  DialUp(const DialUp&) = delete;
  DialUp& operator=(const DialUp&) = delete;

  void ConnectIfNeeded();

 private:
  bool dialled = false;  // asked for; whether that led to a connection is not told
};

}  // namespace platform

#endif
