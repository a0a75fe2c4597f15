// nvhost download: a file from a web server, with a progress bar and Ctrl-C.
#include <cstdio>
#include <cstdlib>

#include "background_download.h"
#include "commands.h"
#include "signal_watch.h"
#include "terminal/progress_display.h"

namespace nvhost {
namespace {

using namespace std::chrono_literals;

constexpr auto lookPause = 100ms;
constexpr auto stopPatience = 500ms;  // for the library to stop by itself

struct Arguments {
  std::string host;
  std::string path;
  std::string file;
};

// Shows how far the transfer is until it ends or a signal asks for the end: that signal, else 0.
int Watch(BackgroundDownload& download, ProgressDisplay& display, const SignalWatch& signals) {
  int signal = 0;
  while (signal == 0 && !download.EndsWithin(lookPause)) {
    display.Update(download.Progress());
    signal = signals.Seen();
  }
  if (signal != 0) download.Stop();
  return signal;
}

void Run(const NVSupportModule& support, const Arguments& arguments) {
  const SignalWatch signals;
  BackgroundDownload download(support, arguments.host, arguments.path, arguments.file);
  ProgressDisplay display;
  const int signal = Watch(download, display, signals);
  display.Clear();
  if (signal != 0 && !download.EndsWithin(stopPatience)) {
    download.Abandon();
    std::fputs("nvhost: stopped; nothing was kept\n", stderr);
    std::_Exit(interruptedBy + signal);
  }
  const WebProgressCounters bytes = download.Progress();
  switch (download.Result()) {
    case BackgroundDownload::Outcome::complete:
      std::printf("%s: %s in %.1f s\n", arguments.file.c_str(), FormatBytes(static_cast<double>(bytes.done)).c_str(),
                  display.Seconds());
      return;
    case BackgroundDownload::Outcome::incomplete:
      throw Failure(incomplete, "incomplete: " + FormatCount(bytes.done) + " of " +
                                    FormatCount(static_cast<std::uint64_t>(bytes.total)) + " bytes; nothing was kept");
    case BackgroundDownload::Outcome::brokenOff:
      if (signal != 0) throw Failure(interruptedBy + signal, "stopped; nothing was kept");
      throw Failure(transferFailed,
                    "the transfer broke off or " + arguments.file + " cannot be written; nothing was kept");
    case BackgroundDownload::Outcome::refused:
      throw Failure(transferFailed, arguments.host + " cannot be reached or does not give " + arguments.path + ", or " +
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
      [arguments, &chosen] { chosen = [arguments](const NVSupportModule& support) { Run(support, *arguments); }; });
}

}  // namespace nvhost
