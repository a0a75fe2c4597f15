#include "background_download.h"

#include <cstdio>

#include "system.h"

namespace nvhost {

BackgroundDownload::BackgroundDownload(const NVSupportModule& support, const std::string& host, const std::string& path,
                                       const std::string& localFile)
    : file(localFile),
      outcome(std::async(std::launch::async, [this, &support, host, path] { return Run(support, host, path); })) {}

BackgroundDownload::~BackgroundDownload() {
  Stop();
  outcome.wait();
}

bool BackgroundDownload::EndsWithin(std::chrono::milliseconds time) const {
  return outcome.wait_for(time) == std::future_status::ready;
}

BackgroundDownload::Outcome BackgroundDownload::Run(const NVSupportModule& support, const std::string& host,
                                                    const std::string& path) {
  const auto callback = [](void* self) { return static_cast<BackgroundDownload*>(self)->OnProgress(); };
  const bool arrived = support.download(host.c_str(), path.c_str(), file.c_str(), callback, this, &counters);
  ShowCounters();
  if (!arrived) return begun ? Outcome::brokenOff : Outcome::refused;
  // When a server closes early, the library takes that for the end of the body.
  if (counters.total < 0 || counters.done == static_cast<std::uint64_t>(counters.total)) return Outcome::complete;
  std::remove(file.c_str());
  return Outcome::incomplete;
}

bool BackgroundDownload::OnProgress() {
  begun = true;
  ShowCounters();
  return !stopping;
}

void BackgroundDownload::ShowCounters() {
  done = counters.done;
  total = counters.total;
}

void BackgroundDownload::Abandon() const {
  // The file may be another process's, which downloads to the same place.
  const std::string temporary = file + ".TMP";
  if (IsOpenHere(temporary)) std::remove(temporary.c_str());
}

}  // namespace nvhost
