// Puts requests and expected replies of the service together, item by item.
#ifndef NVSUPPORT_TESTS_SERVICE_REQUEST_H
#define NVSUPPORT_TESTS_SERVICE_REQUEST_H

#include <cstdint>
#include <string>

#include "support/documented_bytes.h"
#include "support/wire_items.h"

using nvsupport::testing::Int;
using nvsupport::testing::Text;

// An example of the protocol page.
inline std::string Example(const std::string& name) {
  return nvsupport::testing::DocumentedBytes(NV_PROTOCOL_PAGE, "hex " + name);
}

inline std::string CreateAccount(const std::string& userId, const std::string& password, const std::string& email) {
  return Int(10) + Text(userId) + Text(password) + Text("A Name") + Text("") + Text(email) + std::string(1, '\0') +
         Int(124) + Text("English");
}

inline std::string SignIn(const std::string& userId, const std::string& password, std::uint32_t device = 1) {
  return Int(8) + Text(userId) + Text(password) + Int(device);
}

// A word of a reply; a value that no test expects if the reply ends before it.
inline std::uint32_t WordAt(const std::string& reply, std::size_t index) {
  std::uint32_t value = 0;
  for (std::size_t i = 4; i-- > 0;) {
    if (4 * index + i >= reply.size()) return 0xBADBAD;
    value = value << 8 | static_cast<unsigned char>(reply[4 * index + i]);
  }
  return value;
}

#endif
