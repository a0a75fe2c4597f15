// The real service behind its real web server for the length of a test, in a folder of its own; this process and its
// children are sent there.
#ifndef NVSUPPORT_TESTS_SERVICE_LOCAL_SERVICE_H
#define NVSUPPORT_TESTS_SERVICE_LOCAL_SERVICE_H

#include <memory>
#include <string>
#include <vector>

#include "support/temporary_home.h"

class LocalService {
 public:
  LocalService();
  LocalService(const LocalService&) = delete;
  LocalService& operator=(const LocalService&) = delete;
  ~LocalService();

  // A file or folder in the service's folder.
  std::string Path(const std::string& name) const { return folder / name; }

 private:
  const nvsupport::testing::TemporaryFolder folder;
  std::vector<std::unique_ptr<nvsupport::testing::ScopedVariable>> environment;
};

#endif
