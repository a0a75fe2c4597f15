// Processes that do the same work, such as answering the requests that come to one socket.
#ifndef NVSUPPORT_SERVICE_PROCESS_POOL_H
#define NVSUPPORT_SERVICE_PROCESS_POOL_H

#include <cstdint>
#include <functional>

namespace nvsupport::service {

// Runs `work` in so many child processes, and replaces each that ends, until this process gets SIGTERM. Then the
// children get it, too. They have it blocked, so that no work is broken off; a call that unblocks it while it waits is
// interrupted, and `work` must return then. Returns when all children have ended.
void RunPool(std::int64_t processes, const std::function<void()>& work);

}  // namespace nvsupport::service

#endif
