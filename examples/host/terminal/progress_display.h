// Shows the progress of a transfer on standard error: in a terminal one line, as wide as that allows, which is drawn
// again and again; elsewhere a new line now and then.
#ifndef NVHOST_TERMINAL_PROGRESS_DISPLAY_H
#define NVHOST_TERMINAL_PROGRESS_DISPLAY_H

#include <nvsupport/nvsupport.h>

#include <chrono>
#include <string>

namespace nvhost {

// Such as "8.4 MiB".
std::string FormatBytes(double bytes);
// Such as "1,000,000".
std::string FormatCount(std::uint64_t count);

class ProgressDisplay {
 public:
  ProgressDisplay();

  // Call it as often as you like; it shows something only when enough time has passed.
  void Update(const WebProgressCounters& counters);
  // Clears the line in a terminal, so that the next text stands in its place.
  void Clear();
  double Seconds() const;  // since the transfer began

 private:
  using Clock = std::chrono::steady_clock;

  std::string Describe(const WebProgressCounters& counters) const;

  const Clock::time_point begin = Clock::now();
  const bool terminal;
  const Clock::duration pause;  // between two lines
  Clock::time_point next;       // when to show something again
};

}  // namespace nvhost

#endif
