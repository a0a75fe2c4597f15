// A download on a thread of its own, so that the host reacts whatever the server does. It tells whether the whole file
// came.
#ifndef NVHOST_BACKGROUND_DOWNLOAD_H
#define NVHOST_BACKGROUND_DOWNLOAD_H

#include <nvsupport/nvsupport_module.h>

#include <atomic>
#include <chrono>
#include <future>
#include <string>

namespace nvhost {

class BackgroundDownload {
 public:
  enum class Outcome {
    complete,
    incomplete,  // the server closed early; the part that came is taken away again
    brokenOff,   // the transfer failed on its way, or the file could not be written; nothing is kept
    refused,     // nothing came: no answer, a refusal, or no place for the file
  };

  // Begins at once. support: outlives this object.
  BackgroundDownload(const NVSupportModule& support, const std::string& host, const std::string& path,
                     const std::string& file);
  BackgroundDownload(const BackgroundDownload&) = delete;
  BackgroundDownload& operator=(const BackgroundDownload&) = delete;
  // Stops the transfer and waits for its end, which takes up to a minute while the server is silent.
  ~BackgroundDownload();

  // True if the transfer ends within that time.
  bool EndsWithin(std::chrono::milliseconds time) const;
  const std::string& File() const { return file; }
  Outcome Result() const { return outcome.get(); }  // waits for the end
  WebProgressCounters Progress() const { return {done, total}; }

  // Ends the transfer when the next bytes come.
  void Stop() { stopping = true; }
  // For a host that ends now and does not wait: takes away the library's temporary file. What follows is
  // std::_Exit(), because the library is still at work.
  void Abandon() const;

 private:
  Outcome Run(const NVSupportModule& support, const std::string& host, const std::string& path);
  bool OnProgress();
  void ShowCounters();

  const std::string file;
  WebProgressCounters counters{0, -1};  // the library's, for the thread alone

  // What both threads see.
  std::atomic<bool> begun = false;
  std::atomic<bool> stopping = false;
  std::atomic<std::uint64_t> done = 0;
  std::atomic<std::int64_t> total = -1;

  std::shared_future<Outcome> outcome;  // last: the thread begins with it and uses what stands above
};

}  // namespace nvhost

#endif
