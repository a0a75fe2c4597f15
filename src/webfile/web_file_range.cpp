// Ranged reads: a stretch of a remote file into memory.
#include <algorithm>
#include <exception>
#include <string>

#include "base/ascii.h"
#include "base/process_wide.h"
#include "webfile/web_file_connection.h"

namespace nvsupport {
namespace {

// Those of a download less the two that ask for a fresh copy.
constexpr DWORD rangeFlags = INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_NO_AUTO_REDIRECT | INTERNET_FLAG_NO_COOKIES |
                             INTERNET_FLAG_PRAGMA_NOCACHE;
constexpr std::int32_t noBody = -1;
constexpr std::int32_t statusOfPart = 206;

std::string RangeHeader(std::int64_t offset, std::int32_t length) {
  // The sum may pass the largest offset; that is for the server to refuse.
  const auto end = static_cast<std::uint64_t>(offset) + static_cast<std::uint64_t>(std::int64_t{length} - 1);
  return "Range:bytes=" + std::to_string(offset) + "-" + std::to_string(static_cast<std::int64_t>(end)) + "\n";
}

}  // namespace

std::int32_t WebFileConnection::ReadRange(const char* path, std::int64_t offset, std::int32_t length, void* buffer) {
  request.reset();
  if (!SendRequest(nullptr, path, rangeFlags, RangeHeader(offset, length))) return noBody;
  if (StatusCode() == statusOfPart && !BringsRangeFrom(offset)) return noBody;
  return ReadBody(buffer, length);
}

bool WebFileConnection::BringsRangeFrom(std::int64_t offset) const {
  if (base::ToLower(HeaderText(HTTP_QUERY_CONTENT_TYPE)).starts_with("multipart/byteranges")) return false;
  const std::string range = base::ToLower(HeaderText(HTTP_QUERY_CONTENT_RANGE));
  return range.empty() || range.starts_with("bytes " + std::to_string(offset) + "-");
}

std::int32_t WebFileConnection::ReadBody(void* buffer, std::int32_t length) {
  if (StatusCode() >= firstFailureStatus) return noBody;
  auto* position = static_cast<char*>(buffer);
  std::int32_t received = 0;
  while (received < length) {
    const DWORD wanted = std::min(transferChunk, static_cast<DWORD>(length - received));
    DWORD got = 0;
    if (!InternetReadFile(request.get(), position, wanted, &got) || got == 0 || !GoesOn()) {
      received = 0;
      break;
    }
    position += got;
    received += static_cast<std::int32_t>(got);
  }
  request.reset();
  return received;
}

}  // namespace nvsupport

int32_t xfa704a3f(const char* host, const char* path, int64_t offset, int32_t length, void* buffer,
                  WebProgressCallback callback, void* callbackData) try {
  const base::Call call;
  if (!call) return nvsupport::noBody;
  nvsupport::WebFileConnection connection(host, true, false);
  connection.SetCallback(callback, callbackData);
  return connection.ReadRange(path, offset, length, buffer);
} catch (const std::exception&) {
  return nvsupport::noBody;
}
