// Processes that do the same work: they answer what comes to one socket.
#ifndef NVSUPPORT_SERVICE_PROCESS_POOL_H
#define NVSUPPORT_SERVICE_PROCESS_POOL_H

#include <cstdint>
#include <functional>

namespace nvsupport::service {

// Gives a process its next connection, which it is to close; -1 when it is to end.
using NextConnection = std::function<int()>;

// Runs `work` in so many child processes, and replaces each that ends, until this process gets SIGTERM. It accepts what
// comes to the listening socket `listener` and gives each connection to a child that asks for one. The children do not
// have the socket: so it is gone as soon as this process is, whatever ended it, and who started it sees that. They end
// with this process, too, when they are through with their connection. Returns when all children have ended.
void RunPool(int listener, std::int64_t processes, const std::function<void(const NextConnection&)>& work);

}  // namespace nvsupport::service

#endif
