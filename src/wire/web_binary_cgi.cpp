#include "wire/web_binary_cgi.h"

#include <algorithm>
#include <cstring>

#include "ui/busy_cursor.h"

namespace nvsupport {
namespace {

constexpr const char* agent = "NV_CgiClient";
constexpr const char* serviceHost = NV_SERVICE_HOST;
constexpr DWORD requestFlags = INTERNET_FLAG_NO_COOKIES | INTERNET_FLAG_PRAGMA_NOCACHE;
constexpr std::size_t smallestReadBuffer = 256;  // bytes

}  // namespace

CWebBinaryCGI::CWebBinaryCGI(const char* path, bool secure) {
  dialUp.ConnectIfNeeded();
  const INTERNET_PORT port = secure ? INTERNET_DEFAULT_HTTPS_PORT : INTERNET_DEFAULT_HTTP_PORT;
  const DWORD flags = secure ? requestFlags | INTERNET_FLAG_SECURE : requestFlags;
  // A handle that could not be opened makes the calls on it fail in turn, down to Send.
  internet.reset(InternetOpenA(agent, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
  connection.reset(InternetConnectA(internet.get(), serviceHost, port, nullptr, nullptr, INTERNET_SERVICE_HTTP, 0, 0));
  request.reset(HttpOpenRequestA(connection.get(), "POST", path, nullptr, nullptr, nullptr, flags, 0));
  mode = writing;
}

CWebBinaryCGI::~CWebBinaryCGI() {
  request.reset();
  connection.reset();
  internet.reset();
}

void CWebBinaryCGI::Write(const void* data, std::int32_t size) {
  if (size <= 0) return;
  const auto* bytes = static_cast<const std::uint8_t*>(data);
  const std::size_t needed = buffer.size() + static_cast<std::size_t>(size);
  if (needed > buffer.capacity()) buffer.reserve(std::max(needed, buffer.capacity() + buffer.capacity() / 2));
  buffer.insert(buffer.end(), bytes, bytes + size);
}

bool CWebBinaryCGI::Send() {
  const BusyCursor busy;
  const BOOL sent = HttpSendRequestA(request.get(), nullptr, 0, buffer.data(), static_cast<DWORD>(buffer.size()));
  mode = reading;
  good = true;
  readPos = 0;
  readEnd = 0;
  count = 0;
  buffer.resize(std::max(buffer.size(), smallestReadBuffer));
  readAhead = buffer.data();
  return sent != FALSE;
}

bool CWebBinaryCGI::Read(void* data, std::int32_t size) {
  auto* destination = static_cast<std::uint8_t*>(data);
  bool delivered = false;
  while (size > 0) {
    if (readPos == readEnd) {
      readPos = 0;
      readEnd = 0;
      // A call that fails leaves the count at 0 and so reads as the end of the reply.
      DWORD filled = 0;
      InternetReadFile(request.get(), buffer.data(), static_cast<DWORD>(buffer.size()), &filled);
      readEnd = filled;
      if (readEnd == 0) break;
    }
    const auto piece = std::min<std::uint32_t>(readEnd - readPos, static_cast<std::uint32_t>(size));
    std::memcpy(destination, buffer.data() + readPos, piece);
    destination += piece;
    readPos += piece;
    size -= static_cast<std::int32_t>(piece);
    delivered = true;
  }
  return delivered;
}

}  // namespace nvsupport
