// The files that the text benchmarks work on: those of the folder that NV_BENCH_DATA names or, where it is not set,
// of our own, made at first use in a temporary folder that goes with the process.
#ifndef NVSUPPORT_BENCH_BENCH_DATA_H
#define NVSUPPORT_BENCH_BENCH_DATA_H

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

namespace nvsupport::bench {

// The full name of catalogue-N.txt, lookups-N.txt, settings-N.ini or strings.txt.
std::string DataFile(const std::string& name);
// The N for which there is a file PREFIX-N.EXTENSION.
std::vector<std::int64_t> Sizes(const std::string& prefix, const std::string& extension);
std::vector<std::string> LinesOf(const std::string& path);
std::string TemporaryFolder();
// Memory that this process has resident, once the heap has given back what it does not need.
double BeginPeak();
// The most since then.
double PeakKilobytes();

// One benchmark JOB/N for each such file.
inline void RegisterSizes(const std::string& job, const std::string& prefix, const std::string& extension,
                          void (*run)(benchmark::State&, std::int64_t), const std::string& peer = {}) {
  for (const std::int64_t size : Sizes(prefix, extension)) {
    benchmark::RegisterBenchmark((job + peer + '/' + std::to_string(size)).c_str(), run, size)
        ->Unit(benchmark::kMillisecond);
  }
}

}  // namespace nvsupport::bench

#endif
