#include "bench_data.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>

namespace nvsupport::bench {
namespace {

namespace fs = std::filesystem;

// Removes its folder at the end of the process that made it.
struct OwnFolder {
  OwnFolder() {
    path = (fs::temp_directory_path() / "nvsupport-bench-XXXXXX").string();
    if (mkdtemp(path.data()) == nullptr) std::abort();
  }
  ~OwnFolder() {
    std::error_code ignored;
    fs::remove_all(path, ignored);
  }
  std::string path;
};

const char* GivenFolder() {
  const char* const folder = std::getenv("NV_BENCH_DATA");
  return folder != nullptr && *folder != '\0' ? folder : nullptr;
}

std::vector<std::string> Sources(std::int64_t count) {
  std::vector<std::string> sources;
  for (std::int64_t i = 0; i < count; ++i) {
    const std::string number = std::to_string(i);
    sources.push_back("Message " + number + " tells the user what went wrong with the " + number + "th request.");
  }
  std::shuffle(sources.begin(), sources.end(), std::mt19937(1));
  return sources;
}

void Make(const std::string& name, const std::string& path) {
  std::ofstream file(path, std::ios::binary);
  const std::int64_t size = std::atoll(name.c_str() + std::min(name.find('-') + 1, name.size()));
  if (name.starts_with("catalogue-")) {
    for (const std::string& source : Sources(size)) file << source << "\tDeutsch: " << source << "\r\n";
  } else if (name.starts_with("lookups-")) {
    std::vector<std::string> sources = Sources(size);
    std::shuffle(sources.begin(), sources.end(), std::mt19937(2));
    for (const std::string& source : sources) file << source << '\n';
  } else if (name.starts_with("settings-")) {
    for (std::int64_t i = 0; i < size; ++i) file << "setting" << 1000000 + i << "=value+" << i << "+of+a+setting\n";
  } else {
    for (int i = 0; i < 100; ++i) file << "A text of the usual length, number " << i << '\n';
  }
}

}  // namespace

std::string TemporaryFolder() {
  static const OwnFolder folder;
  return folder.path;
}

std::string DataFile(const std::string& name) {
  if (const char* const folder = GivenFolder()) return std::string(folder) + '/' + name;
  const std::string path = TemporaryFolder() + '/' + name;
  if (!fs::exists(path)) Make(name, path);
  return path;
}

std::vector<std::int64_t> Sizes(const std::string& prefix, const std::string& extension) {
  if (GivenFolder() == nullptr) {
    return prefix == "settings" ? std::vector<std::int64_t>{2, 10000} : std::vector<std::int64_t>{1000, 10000, 100000};
  }
  std::vector<std::int64_t> sizes;
  for (const auto& entry : fs::directory_iterator(GivenFolder())) {
    const std::string name = entry.path().filename().string();
    if (!name.starts_with(prefix + '-') || !name.ends_with(extension)) continue;
    sizes.push_back(std::atoll(name.c_str() + prefix.size() + 1));
  }
  std::sort(sizes.begin(), sizes.end());
  return sizes;
}

double BeginPeak() {
  malloc_trim(0);
  std::ofstream("/proc/self/clear_refs") << 5;
  return PeakKilobytes();
}

double PeakKilobytes() {
  std::ifstream status("/proc/self/status");
  for (std::string name; status >> name;) {
    double kilobytes = 0;
    if (name == "VmHWM:" && status >> kilobytes) return kilobytes;
  }
  return 0;
}

std::vector<std::string> LinesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

}  // namespace nvsupport::bench
