// nvhost: a host of the nvsupport library on the command line, written against its public header alone. It shows how
// a host calls each export and is meant to be copied from.
#include <cstdio>
#include <cstdlib>

#include "command_line.h"
#include "library.h"

namespace {

nvhost::Library Load(const std::string& path) try {
  return nvhost::Library(path);
} catch (const std::runtime_error& error) {
  throw nvhost::Failure(nvhost::noModule, error.what());
}

int Run(int argc, char** argv) {
  const nvhost::Request request = nvhost::ReadCommandLine(argc, argv);
  static char traceAll[] = "NV_TRACE=all";
  if (request.trace) putenv(traceAll);
  if (request.work) request.work(Load(request.library).Functions());
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    throw nvhost::Failure(nvhost::cannotWrite, nvhost::outputFault);
  }
  return request.exitCode;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const nvhost::Failure& failure) {
    std::fprintf(stderr, "nvhost: %s\n", failure.what());
    return failure.code;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "nvhost: unexpected failure: %s\n", error.what());
    return nvhost::unexpected;
  }
}
