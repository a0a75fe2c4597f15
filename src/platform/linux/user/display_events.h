// What the core makes of the user's doings: messages to the window concerned, as long as its dialog takes input.
#ifndef NVSUPPORT_PLATFORM_LINUX_USER_DISPLAY_EVENTS_H
#define NVSUPPORT_PLATFORM_LINUX_USER_DISPLAY_EVENTS_H

#include "display.h"

namespace user {

DisplayEvents& CoreEvents();

}  // namespace user

#endif
