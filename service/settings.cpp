#include "service/settings.h"

#include <cstdlib>
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

}  // namespace nvsupport::service
