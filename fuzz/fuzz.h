// The fuzz targets: each takes arbitrary bytes for what comes from outside, and must neither crash, hang nor leak.
#ifndef NVSUPPORT_FUZZ_FUZZ_H
#define NVSUPPORT_FUZZ_FUZZ_H

#include <string>
#include <string_view>

namespace nvsupport::fuzz {

struct Target {
  std::string_view name;  // also of the folder of its corpus
  void (*run)(std::string_view input);
};

extern const Target fileTargets[8];
extern const Target replyTargets[5];
extern const Target serverTargets[5];

// Ends the process, for properties that do not hold.
void Require(bool holds);

// What the server answers to every request from now on; must live as long.
void AnswerWith(std::string_view reply);

// The full name of a file in memory with these bytes; valid until the next call.
std::string FileWith(std::string_view bytes);

}  // namespace nvsupport::fuzz

#endif
