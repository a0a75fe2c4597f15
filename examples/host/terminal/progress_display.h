// Shows on standard error how far a transfer is: a line that is drawn anew in a terminal, as wide as that allows, else
// a line now and then.
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
  // Takes the line away in a terminal, so that a last one can follow.
  void Clear();
  double Seconds() const;  // since the transfer began

 private:
  using Clock = std::chrono::steady_clock;

  std::string Describe(const WebProgressCounters& counters) const;

  const Clock::time_point begin = Clock::now();
  const bool terminal;
  const Clock::duration pause;  // between two looks
  Clock::time_point next;       // when to show something again
};

}  // namespace nvhost

#endif
