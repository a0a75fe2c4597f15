// Starts the user's viewer for a document or a web address.
#ifndef NVSUPPORT_PLATFORM_LINUX_VIEWER_H
#define NVSUPPORT_PLATFORM_LINUX_VIEWER_H

namespace platform {

// True if xdg-open was started. It is given no more than the target: no descriptor of the host, no terminal. The host
// gets no child, so it has none to wait for and sees no SIGCHLD.
bool StartViewer(const char* target);

}  // namespace platform

#endif
