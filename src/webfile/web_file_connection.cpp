// Connection, request and the head of the reply.
#include "webfile/web_file_connection.h"

#include <charconv>
#include <cstring>

#include "base/ascii.h"

namespace nvsupport {
namespace {

constexpr DWORD downloadFlags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_NO_AUTO_REDIRECT |
                                INTERNET_FLAG_NO_COOKIES | INTERNET_FLAG_RESYNCHRONIZE | INTERNET_FLAG_PRAGMA_NOCACHE;
constexpr DWORD statusUnknown = 1000;
constexpr std::int64_t lengthUnknown = -1;
constexpr std::size_t lengthTextSize = 30;  // bytes

}  // namespace

WebFileConnection::WebFileConnection(const char* hostName, bool mayDial, bool overTls)
    : secure(overTls), host(hostName != nullptr ? hostName : ""), autodial(mayDial) {}

WebFileConnection::~WebFileConnection() {
  request.reset();
  connection.reset();
}

void WebFileConnection::SetCallback(WebProgressCallback function, void* data) {
  callback = function;
  callbackData = data;
}

bool WebFileConnection::GoesOn() const try { return callback == nullptr || callback(callbackData); } catch (...) {
  return false;  // a host's exception must not leave half a transfer behind
}

bool WebFileConnection::ConnectIfNeeded() {
  if (state != State::unknown) return state == State::connected;
  state = State::failed;
  if (host.empty() || base::HasControlCharacters(host)) return false;
  if (autodial) dialUp.ConnectIfNeeded();
  const INTERNET_PORT port = secure ? INTERNET_DEFAULT_HTTPS_PORT : INTERNET_DEFAULT_HTTP_PORT;
  connection.reset(
      InternetConnectA(webSession.get(), host.c_str(), port, nullptr, nullptr, INTERNET_SERVICE_HTTP, 0, 0));
  if (!connection) return false;
  state = State::connected;
  return true;
}

bool WebFileConnection::SendRequest(const char* verb, const char* path, DWORD flags, std::string_view header) {
  if ((path != nullptr && base::HasControlCharacters(path)) || !ConnectIfNeeded()) return false;
  if (secure) flags |= INTERNET_FLAG_SECURE;
  request.reset(HttpOpenRequestA(connection.get(), verb, path, nullptr, nullptr, nullptr, flags, 0));
  const char* text = header.empty() ? nullptr : header.data();
  return HttpSendRequestA(request.get(), text, static_cast<DWORD>(header.size()), nullptr, 0) != FALSE;
}

bool WebFileConnection::OpenGet(const char* path) {
  return SendRequest("GET", path, downloadFlags, {});
}

std::int32_t WebFileConnection::StatusCode() const {
  DWORD status = statusUnknown;
  DWORD size = sizeof status;
  HttpQueryInfoA(request.get(), HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &size, nullptr);
  return static_cast<std::int32_t>(status);
}

std::int64_t WebFileConnection::ContentLength() const {
  char text[lengthTextSize] = {};
  DWORD size = sizeof text;
  if (!HttpQueryInfoA(request.get(), HTTP_QUERY_CONTENT_LENGTH, text, &size, nullptr)) return lengthUnknown;
  std::int64_t length = lengthUnknown;
  std::from_chars(text, text + strnlen(text, sizeof text), length);
  return length;
}

std::string WebFileConnection::HeaderText(DWORD which) const {
  DWORD size = 0;
  HttpQueryInfoA(request.get(), which, nullptr, &size, nullptr);  // asks for the room that it takes
  std::string text(size, '\0');
  if (size == 0 || !HttpQueryInfoA(request.get(), which, text.data(), &size, nullptr)) return {};
  text.resize(size);
  return text;
}

}  // namespace nvsupport
