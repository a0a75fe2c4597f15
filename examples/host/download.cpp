// nvhost download: a file from a web server, with a progress bar and Ctrl-C. Standard output is for the file alone.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>

#include "background_download.h"
#include "commands.h"
#include "signal_watch.h"
#include "system.h"
#include "terminal/progress_display.h"

namespace nvhost {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr auto lookPause = 100ms;
constexpr auto stopPatience = 500ms;  // how long the library gets to stop by itself

// The file that the library writes: the one that the user named or, for standard output, one in a temporary folder that
// this object removes.
class Destination {
 public:
  explicit Destination(const std::string& file) : path(file) {
    if (file != standardOutput) return;
    folder = fs::temp_directory_path() / ("nvhost-" + std::to_string(std::random_device()()));
    if (!fs::create_directory(folder)) throw Failure(cannotWrite, folder.string() + " is there already");
    fs::permissions(folder, fs::perms::owner_all);
    path = (folder / "file").string();
  }
  Destination(const Destination&) = delete;
  Destination& operator=(const Destination&) = delete;
  ~Destination() { RemoveFolder(); }

  const std::string& Path() const { return path; }
  void RemoveFolder() const {
    std::error_code ignored;
    if (!folder.empty()) fs::remove_all(folder, ignored);
  }
  // Copies a temporary file to standard output; a file that the user named is in its place already.
  void CopyToOutput() const {
    if (folder.empty()) return;
    UseBinaryOutput();
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
    if (!file) throw Failure(unexpected, path + " cannot be read");
    RemoveFolder();  // now, if an open file can be removed: a reader that leaves early ends this program
    std::array<char, 65536> part;
    do {
      const std::size_t length = std::fread(part.data(), 1, part.size(), file.get());
      if (std::fwrite(part.data(), 1, length, stdout) != length) throw Failure(cannotWrite, outputFault);
    } while (std::feof(file.get()) == 0 && std::ferror(file.get()) == 0);
    if (std::ferror(file.get()) != 0) throw Failure(unexpected, path + " cannot be read");
  }

 private:
  fs::path folder;  // empty: none
  std::string path;
};

// Shows the progress until the transfer ends or a signal comes. Returns the signal, or 0.
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
  const Destination destination(arguments.file);
  BackgroundDownload download(support, arguments.host, arguments.path, destination.Path());
  ProgressDisplay display;
  const int signal = Watch(download, display, signals);
  display.Clear();
  if (signal != 0 && !download.EndsWithin(stopPatience)) {
    download.Abandon();
    destination.RemoveFolder();
    std::fputs("nvhost: stopped; nothing was kept\n", stderr);
    std::_Exit(interruptedBy + signal);
  }
  const WebProgressCounters bytes = download.Progress();
  switch (download.Result()) {
    case BackgroundDownload::Outcome::complete:
      destination.CopyToOutput();
      std::fprintf(stderr, "%s: %s in %.1f s\n", arguments.file.c_str(),
                   FormatBytes(static_cast<double>(bytes.done)).c_str(), display.Seconds());
      return;
    case BackgroundDownload::Outcome::incomplete:
      throw Failure(incomplete, "incomplete: " + FormatCount(bytes.done) + " of " +
                                    FormatCount(static_cast<std::uint64_t>(bytes.total)) + " bytes; nothing was kept");
    case BackgroundDownload::Outcome::brokenOff:
      if (signal != 0) throw Failure(interruptedBy + signal, "stopped; nothing was kept");
      throw Failure(transferFailed,
                    "the transfer broke off, or the disk is full; nothing was kept; --trace tells more");
    case BackgroundDownload::Outcome::refused:
      throw Failure(transferFailed,
                    arguments.host + " cannot be reached or does not give " + arguments.path + "; --trace tells which");
  }
}

}  // namespace nvhost
