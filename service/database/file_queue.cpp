#include "service/database/file_queue.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace nvsupport::service {
namespace {

constexpr int ownerOnly = 0600;

// The bytes of the file that are locked: whose turn it is, and who is next.
constexpr off_t turn = 0;
constexpr off_t next = 1;

bool Lock(int descriptor, int command, int type, off_t byte) {
  struct flock lock = {};
  lock.l_type = static_cast<short>(type);
  lock.l_whence = SEEK_SET;
  lock.l_start = byte;
  lock.l_len = 1;
  int result = 0;
  do result = fcntl(descriptor, command, &lock);
  while (result != 0 && errno == EINTR);
  return result == 0;
}

}  // namespace

FileQueue::FileQueue(const std::string& path)
    : descriptor(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, ownerOnly)) {
  if (descriptor < 0) throw std::system_error(errno, std::generic_category(), path);
}

FileQueue::~FileQueue() {
  close(descriptor);
}

// Who leaves and comes back finds the next one there: with a single lock it would be quicker than those who are only
// being woken, and have turn after turn.
void FileQueue::Enter() {
  const bool entered = Lock(descriptor, F_OFD_SETLKW, F_WRLCK, next) && Lock(descriptor, F_OFD_SETLKW, F_WRLCK, turn);
  const int error = errno;
  Lock(descriptor, F_OFD_SETLK, F_UNLCK, next);
  if (!entered) throw std::system_error(error, std::generic_category(), "waiting in a queue");
}

bool FileQueue::TryEnter() {
  return Lock(descriptor, F_OFD_SETLK, F_WRLCK, turn);
}

void FileQueue::Leave() noexcept {
  Lock(descriptor, F_OFD_SETLK, F_UNLCK, turn);
}

}  // namespace nvsupport::service
