// The number that stands for this computer, worked out from the machine id that the system was installed with.
#include <unistd.h>

#include <string>

#include "base/ascii.h"
#include "files/read_file.h"
#include "platform/platform.h"
#include "sip_hash.h"

namespace {

// The library's own key, so that its number cannot be matched with those that other programs derive from the machine
// id.
constexpr platform::SipKey deviceKey{0x5d1c8e20b7f3a946, 0x92e6470bd83fc15a};
constexpr std::size_t machineIdLength = 32;

// The machine id, else the host name, which is the next best thing that stays the same from run to run.
std::string NameOfMachine() {
  for (const char* path : {"/etc/machine-id", "/var/lib/dbus/machine-id"}) {
    std::string id = platform::ReadSmallFile(path).value_or("").substr(0, machineIdLength);
    // On a system that has never been started the file holds a word.
    if (id.size() == machineIdLength && id.find_first_not_of(base::lowerHexDigits) == std::string::npos) return id;
  }
  char name[256] = {};
  return gethostname(name, sizeof name - 1) == 0 ? name : "";
}

}  // namespace

namespace platform {

std::uint32_t GetComputerDeviceId() {
  const std::uint64_t hash = SipHash(deviceKey, NameOfMachine());
  return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

}  // namespace platform
