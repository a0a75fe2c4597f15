// A queue of processes, made of locks on a file. The kernel wakes those who wait in their order, and a process that is
// killed leaves the queue.
#ifndef NVSUPPORT_SERVICE_DATABASE_FILE_QUEUE_H
#define NVSUPPORT_SERVICE_DATABASE_FILE_QUEUE_H

#include <chrono>
#include <string>

namespace nvsupport::service {

class FileQueue {
 public:
  // Makes the file, readable by its owner alone, if it is missing. Throws std::system_error if that cannot be done.
  explicit FileQueue(const std::string& path);
  FileQueue(const FileQueue&) = delete;
  FileQueue& operator=(const FileQueue&) = delete;
  ~FileQueue();

  // Waits for the turn of this object, which lasts until Leave; false when it did not come within `patience`.
  bool Enter(std::chrono::milliseconds patience = std::chrono::milliseconds::max());
  // Takes the turn if nobody has it; never waits.
  bool TryEnter();
  void Leave() noexcept;

 private:
  int descriptor;
};

}  // namespace nvsupport::service

#endif
