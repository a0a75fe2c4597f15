#include "dial_up.h"

#include "platform/platform.h"

namespace platform {

DialUp::~DialUp() {
  if (dialled) InternetAutodialHangup(0);
}

void DialUp::ConnectIfNeeded() {
  DWORD state = 0;
  if (InternetGetConnectedState(&state, 0)) return;
  InternetAutodial(INTERNET_AUTODIAL_FORCE_UNATTENDED, nullptr);
  dialled = true;
}

}  // namespace platform
