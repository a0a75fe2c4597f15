// Puts requests of the service together, item by item, and takes words out of its replies.
#ifndef NVSUPPORT_TESTS_SERVICE_REQUEST_H
#define NVSUPPORT_TESTS_SERVICE_REQUEST_H

#include <cstdint>
#include <cstring>
#include <string>

#include "support/wire_items.h"

using nvsupport::testing::Int;
using nvsupport::testing::Text;

inline std::string CreateAccount(const std::string& userId, const std::string& email,
                                 const std::string& password = "secret") {
  return Int(10) + Text(userId) + Text(password) + Text("A Name") + Text("") + Text(email) + '\0' + Int(124) +
         Text("English");
}

// A word of a reply; a value that no test expects if the reply ends before it.
inline std::uint32_t WordAt(const std::string& reply, std::size_t index) {
  std::uint32_t value = 0xBADBAD;
  if (reply.size() >= 4 * index + sizeof value) std::memcpy(&value, reply.data() + 4 * index, sizeof value);
  return value;
}

#endif
