// nvhost download: a file from a web server, with a progress bar and Ctrl-C.
#include <cstdio>

#include "commands.h"
#include "interrupt.h"
#include "progress_display.h"

namespace nvhost {
namespace {

struct Arguments {
  std::string host;
  std::string path;
  std::string file;
};

// What the library's callback works on.
struct Transfer {
  WebProgressCounters counters = {0, -1};
  ProgressDisplay display;
  bool begun = false;
};

bool OnProgress(void* data) {
  Transfer& transfer = *static_cast<Transfer*>(data);
  transfer.begun = true;
  transfer.display.Update(transfer.counters);
  return !Interrupted();
}

void Run(const NvSupport& support, const Arguments& arguments) {
  WatchInterrupt();
  Transfer transfer;
  const bool arrived = support.download(arguments.host.c_str(), arguments.path.c_str(), arguments.file.c_str(),
                                        OnProgress, &transfer, &transfer.counters);
  transfer.display.Clear();
  if (arrived) {
    std::printf("%s: %s in %.1f s\n", arguments.file.c_str(),
                FormatBytes(static_cast<double>(transfer.counters.done)).c_str(), transfer.display.Seconds());
  } else if (Interrupted()) {
    throw Failure(kInterrupted, "stopped; nothing was kept");
  } else if (transfer.begun) {
    throw Failure(kTransferFailed,
                  "the transfer broke off or " + arguments.file + " cannot be written; nothing was kept");
  } else {
    throw Failure(kTransferFailed, arguments.host + " cannot be reached or does not give " + arguments.path + ", or " +
                                       arguments.file + " cannot be written");
  }
}

}  // namespace

void AddDownload(CLI::App& app, Work& chosen) {
  const auto arguments = std::make_shared<Arguments>();
  CLI::App* const command = app.add_subcommand("download", "Download a file from a web server");
  command->add_option("host", arguments->host, "Name of the web server")->required()->type_name("HOST");
  command->add_option("path", arguments->path, "Path on the server")->required()->type_name("PATH");
  command->add_option("file", arguments->file, "Local file to write")->required()->type_name("FILE");
  command->callback(
      [arguments, &chosen] { chosen = [arguments](const NvSupport& support) { Run(support, *arguments); }; });
}

}  // namespace nvhost
