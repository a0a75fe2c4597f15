// What operators set by environment variables; docs/operating.md describes each.
#ifndef NVSUPPORT_SERVICE_SETTINGS_H
#define NVSUPPORT_SERVICE_SETTINGS_H

#include <cstdint>
#include <string>

namespace nvsupport::service {

// Empty if the variable is not set.
std::string Setting(const char* name);
// For a variable that the program needs: throws std::runtime_error if it is not set.
std::string RequiredSetting(const char* name);
// `usual` if the variable is not set; throws std::runtime_error if it is not a number above 0.
std::int64_t NumberSetting(const char* name, std::int64_t usual);

// Sets the variables that a file of lines "NAME=value" holds and that are not set; one that is not there holds none.
void ReadSettings(const std::string& path);

}  // namespace nvsupport::service

#endif
