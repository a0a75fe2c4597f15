// What the module takes of the process.
#ifndef NVSUPPORT_FUZZ_SOAK_RESOURCES_H
#define NVSUPPORT_FUZZ_SOAK_RESOURCES_H

#include <cstddef>
#include <string>
#include <vector>

namespace soak {

// Descriptors, threads and memory of this process.
class Resources {
 public:
  Resources();
  // With the module unloaded: as before, and no child is left. Memory may grow by what its allocator keeps.
  void ExpectNoMoreThan(const Resources& before) const;
  void ExpectSocketsAtMost(std::size_t limit) const;

 private:
  std::vector<std::string> descriptors;  // what each leads to
  std::size_t threads = 0;
  long residentKilobytes = 0;
};

}  // namespace soak

#endif
