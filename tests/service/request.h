// Puts requests and expected replies of the service together, item by item.
#ifndef NVSUPPORT_TESTS_SERVICE_REQUEST_H
#define NVSUPPORT_TESTS_SERVICE_REQUEST_H

#include <bit>
#include <cstdint>
#include <string>

#include "support/documented_bytes.h"

struct Request {
  std::string bytes;

  explicit Request(std::uint32_t operation) { Word(operation); }
  Request& Word(std::uint32_t value) { return Number(value, 4); }
  Request& Byte(std::uint8_t value) { return Number(value, 1); }
  Request& Real(double value) { return Number(std::bit_cast<std::uint64_t>(value), 8); }
  Request& Text(const std::string& text) {
    Word(static_cast<std::uint32_t>(text.size()));
    for (const char c : text) Number(static_cast<std::uint16_t>(static_cast<signed char>(c)), 2);
    return *this;
  }

 private:
  Request& Number(std::uint64_t value, int width) {
    for (int i = 0; i < width; ++i) bytes.push_back(static_cast<char>(value >> 8 * i & 0xFF));
    return *this;
  }
};

// An example of the protocol page.
inline std::string Example(const std::string& name) {
  return nvsupport::testing::DocumentedBytes(NV_PROTOCOL_PAGE, "hex " + name);
}

inline std::string CreateAccount(const std::string& userId, const std::string& password, const std::string& email) {
  Request request(10);
  request.Text(userId).Text(password).Text("A Name").Text("").Text(email).Byte(0).Word(124).Text("English");
  return request.bytes;
}

inline std::string SignIn(const std::string& userId, const std::string& password, std::uint32_t device = 1) {
  return Request(8).Text(userId).Text(password).Word(device).bytes;
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
