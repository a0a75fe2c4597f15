#include "service/database/file_queue.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace nvsupport::service {
namespace {

constexpr int ownerOnly = 0600;

}  // namespace

FileQueue::FileQueue(const std::string& path)
    : descriptor(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, ownerOnly)) {
  if (descriptor < 0) throw std::system_error(errno, std::generic_category(), path);
}

FileQueue::~FileQueue() {
  close(descriptor);
}

void FileQueue::Enter() {
  while (flock(descriptor, LOCK_EX) != 0) {
    if (errno != EINTR) throw std::system_error(errno, std::generic_category(), "waiting in a queue");
  }
}

bool FileQueue::TryEnter() {
  return flock(descriptor, LOCK_EX | LOCK_NB) == 0;
}

void FileQueue::Leave() noexcept {
  flock(descriptor, LOCK_UN);
}

}  // namespace nvsupport::service
