#include "service/settings.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "service/database/database.h"

namespace nvsupport::service {

std::string Setting(const char* name) {
  const char* const value = std::getenv(name);
  return value ? value : "";
}

std::string RequiredSetting(const char* name) {
  std::string value = Setting(name);
  if (value.empty()) throw std::runtime_error(std::string(name) + " is not set");
  return value;
}

std::int64_t NumberSetting(const char* name, std::int64_t usual) {
  const std::string text = Setting(name);
  if (text.empty()) return usual;
  const std::int64_t value = ToNumber(text);
  if (value <= 0) throw std::runtime_error(std::string(name) + " is to be above 0");
  return value;
}

void ReadSettings(const std::string& path) {
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    const std::size_t equals = line.find('=');
    if (line.starts_with('#') || equals == std::string::npos) continue;
    constexpr int keepOld = 0;
    setenv(line.substr(0, equals).c_str(), line.substr(equals + 1).c_str(), keepOld);
  }
}

}  // namespace nvsupport::service
