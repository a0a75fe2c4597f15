// The real service behind its real web server for the length of a test, in a folder of its own; this process and its
// children are sent there.
#ifndef NVSUPPORT_TESTS_SERVICE_LOCAL_SERVICE_H
#define NVSUPPORT_TESTS_SERVICE_LOCAL_SERVICE_H

#include <gtest/gtest.h>

#include <memory>
#include <regex>
#include <string>
#include <vector>

#include "support/run_program.h"
#include "support/temporary_home.h"

namespace nvsupport::testing {

class LocalService {
 public:
  LocalService() {
    const std::string environment = RunProgram({NV_SERVICE_SCRIPT, "start", Path("")}).output;
    const std::regex setting("export ([A-Z_]+)='([^']*)'\n");
    for (std::sregex_iterator found(environment.begin(), environment.end(), setting), end; found != end; ++found) {
      variables.push_back(std::make_unique<ScopedVariable>(found->str(1), found->str(2)));
    }
    EXPECT_EQ(variables.size(), 2U);
  }
  ~LocalService() { EXPECT_EQ(RunProgram({NV_SERVICE_SCRIPT, "stop", Path("")}).exitCode, 0); }

  // A file or folder in the service's folder.
  std::string Path(const std::string& name) const { return folder / name; }

 private:
  const TemporaryFolder folder;
  std::vector<std::unique_ptr<ScopedVariable>> variables;
};

}  // namespace nvsupport::testing

#endif
