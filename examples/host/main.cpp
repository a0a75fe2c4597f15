// nvhost: a host of the nvsupport library on the command line, written against its public header alone. It shows how
// a host calls each export and is meant to be copied from.
#include <cstdio>
#include <cstdlib>

#include "commands.h"

namespace {

constexpr const char* exitCodes =
    "Exit codes:\n"
    "  0    done\n"
    "  1    an unexpected failure, such as no memory left\n"
    "  2    wrong arguments\n"
    "  3    the support library cannot be loaded\n"
    "  4    a point of the area is out of range (latitude -90 to 90, longitude -400 to 400)\n"
    "  5    the service answered and has no products for the area\n"
    "  6    no products, and nothing tells that the service answered\n"
    "  7    the transfer failed\n"
    "  8    no session token: the sign-in was cancelled or refused, or the service is out of reach\n"
    "  9    standard output cannot be written\n"
    "  10   there is no screen for the window of gui\n"
    "  11   incomplete: the server closed before the whole file was there\n"
    "  130  stopped with Ctrl-C (143: by SIGTERM)";

// What stands where a command should; empty if nothing does or a command is there.
std::string UnknownCommand(const CLI::App& app) {
  const std::vector<std::string> rest = app.remaining();
  return rest.empty() || !app.get_subcommands().empty() ? "" : rest.front();
}

nvhost::Library Load(const std::string& path) try {
  return nvhost::Library(path);
} catch (const std::runtime_error& error) {
  throw nvhost::Failure(nvhost::noModule, error.what());
}

int Run(int argc, char** argv) {
  CLI::App app("Searches the map shop, moves files and signs in, through the nvsupport library.", "nvhost");
  app.allow_windows_style_options(false);  // a path on a server begins with a slash
  std::string library = nvhost::FindLibrary();
  app.add_option("--library", library, "The support library to load")->type_name("PATH")->capture_default_str();
  app.set_version_flag("--version", "nvhost " NVSUPPORT_VERSION);
  bool trace = false;
  app.add_flag("--trace", trace, "Let the library tell on standard error what it does, as NV_TRACE=all");
  app.require_subcommand(1);
  app.fallthrough();
  app.footer(exitCodes);
  nvhost::Work chosen;
  nvhost::AddSearch(app, chosen);
  nvhost::AddDownload(app, chosen);
  nvhost::AddRead(app, chosen);
  nvhost::AddWhoAmI(app, chosen);
  nvhost::AddToken(app, chosen);
  nvhost::AddGui(app, chosen);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (app.exit(error) == 0) return nvhost::done;
    const std::string command = UnknownCommand(app);
    if (!command.empty()) std::fprintf(stderr, "There is no command %s.\n", command.c_str());
    return nvhost::wrongArguments;
  }
  static char traceAll[] = "NV_TRACE=all";
  if (trace) putenv(traceAll);
  chosen(Load(library).Functions());
  if (std::fflush(stdout) != 0) throw nvhost::Failure(nvhost::cannotWrite, "standard output cannot be written");
  return nvhost::done;
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
