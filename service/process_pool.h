// Processes that do the same work, such as answering the requests that come to one socket.
#ifndef NVSUPPORT_SERVICE_PROCESS_POOL_H
#define NVSUPPORT_SERVICE_PROCESS_POOL_H

#include <cstdint>
#include <functional>

namespace nvsupport::service {

// Runs `work` in so many child processes, and a fresh one for each that ends, until this process gets SIGTERM. Then the
// children get it, too: it is blocked there, so that nothing is broken off, and interrupts a call that lets it in, upon
// which `work` is to return. Returns when all have ended.
void RunPool(std::int64_t processes, const std::function<void()>& work);

}  // namespace nvsupport::service

#endif
