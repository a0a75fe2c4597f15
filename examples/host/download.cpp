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

}  // namespace

void Download(const NVSupportModule& support, const DownloadArguments& arguments) {
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

}  // namespace nvhost
