// The published names of the web client: handles of a session, a connection and a request.
#include "web_client.h"

#include <charconv>
#include <cstring>
#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "base/process_wide.h"
#include "web_plugin.h"

namespace {

using platform::WebRequest;
using platform::WebTransfer;

constexpr DWORD zeroTerminated = 0xFFFFFFFF;

// What a handle stands for. Each has all that its parent knew, so handles may be closed in any order.
struct WebObject {
  enum class Kind { session, connection, request };
  Kind kind;
  WebRequest description;
  std::unique_ptr<WebTransfer> transfer;  // of a request that was sent
};

// Handles are numbers that are never used again, so one that is closed or was never made is not found.
class HandleTable {
 public:
  HINTERNET Add(WebObject object) {
    const std::lock_guard lock(mutex);
    const auto handle = reinterpret_cast<HINTERNET>(++last);
    objects.emplace(handle, std::make_unique<WebObject>(std::move(object)));
    return handle;
  }
  // Null if there is no handle of that kind. The object lives until its handle is closed.
  WebObject* Find(HINTERNET handle, WebObject::Kind kind) {
    const std::lock_guard lock(mutex);
    const auto found = objects.find(handle);
    return found != objects.end() && found->second->kind == kind ? found->second.get() : nullptr;
  }
  // Null if there is none. The caller destroys the object, which may wait for the network.
  std::unique_ptr<WebObject> Remove(HINTERNET handle) {
    const std::lock_guard lock(mutex);
    auto node = objects.extract(handle);
    return node ? std::move(node.mapped()) : nullptr;
  }

 private:
  std::mutex mutex;
  std::uintptr_t last = 0;
  std::unordered_map<HINTERNET, std::unique_ptr<WebObject>> objects;
};

// The plugin outlives the transfers of the handles.
struct WebClient {
  platform::WebPlugin plugin;
  HandleTable handles;
};

WebClient& TheClient() {
  static base::ProcessWide<WebClient> client;
  return *client;
}

HandleTable& Handles() {
  return TheClient().handles;
}

std::string_view TextOf(LPCSTR text, DWORD length) {
  if (text == nullptr) return {};
  return length == zeroTerminated ? std::string_view(text) : std::string_view(text, length);
}

WebTransfer* FindTransfer(HINTERNET request) {
  const WebObject* object = Handles().Find(request, WebObject::Kind::request);
  return object != nullptr ? object->transfer.get() : nullptr;
}

// Copies a header's text with its terminator. If it does not fit, the size becomes the room that it needs.
BOOL CopyHeader(const char* text, LPVOID buffer, LPDWORD size) {
  if (text == nullptr) return FALSE;
  const std::size_t length = std::strlen(text);
  const bool fits = buffer != nullptr && length < *size;
  if (fits) std::memcpy(buffer, text, length + 1);
  *size = static_cast<DWORD>(fits ? length : length + 1);
  return fits;
}

}  // namespace

HINTERNET InternetOpenA(LPCSTR agent, DWORD, LPCSTR, LPCSTR, DWORD) try {
  WebObject session{.kind = WebObject::Kind::session, .description = {}, .transfer = nullptr};
  session.description.agent = agent != nullptr ? agent : "";
  return Handles().Add(std::move(session));
} catch (const std::exception&) {
  return nullptr;
}

HINTERNET InternetConnectA(HINTERNET internet, LPCSTR host, INTERNET_PORT port, LPCSTR, LPCSTR, DWORD, DWORD,
                           DWORD_PTR) try {
  const WebObject* session = Handles().Find(internet, WebObject::Kind::session);
  if (session == nullptr || host == nullptr || *host == '\0') return nullptr;
  WebObject connection{.kind = WebObject::Kind::connection, .description = session->description, .transfer = nullptr};
  connection.description.host = host;
  connection.description.port = port;
  return Handles().Add(std::move(connection));
} catch (const std::exception&) {
  return nullptr;
}

HINTERNET HttpOpenRequestA(HINTERNET connection, LPCSTR verb, LPCSTR path, LPCSTR, LPCSTR, LPCSTR*, DWORD flags,
                           DWORD_PTR) try {
  const WebObject* parent = Handles().Find(connection, WebObject::Kind::connection);
  if (parent == nullptr) return nullptr;
  WebObject request{.kind = WebObject::Kind::request, .description = parent->description, .transfer = nullptr};
  WebRequest& description = request.description;
  description.path = path != nullptr ? path : "";
  description.post = verb != nullptr && std::strcmp(verb, "POST") == 0;
  description.secure = (flags & INTERNET_FLAG_SECURE) != 0;
  description.followRedirects = (flags & INTERNET_FLAG_NO_AUTO_REDIRECT) == 0;
  description.noCache = (flags & INTERNET_FLAG_PRAGMA_NOCACHE) != 0;
  return Handles().Add(std::move(request));
} catch (const std::exception&) {
  return nullptr;
}

BOOL HttpSendRequestA(HINTERNET request, LPCSTR headers, DWORD headersLength, LPVOID body, DWORD bodyLength) try {
  WebObject* object = Handles().Find(request, WebObject::Kind::request);
  if (object == nullptr) return FALSE;
  object->transfer = TheClient().plugin.MakeTransfer();
  if (!object->transfer) return FALSE;
  const std::string_view content = body != nullptr ? std::string_view(static_cast<const char*>(body), bodyLength) : "";
  return object->transfer->Send(object->description, TextOf(headers, headersLength), content);
} catch (const std::exception&) {
  return FALSE;
}

BOOL HttpQueryInfoA(HINTERNET request, DWORD infoLevel, LPVOID buffer, LPDWORD size, LPDWORD) {
  const WebTransfer* transfer = FindTransfer(request);
  if (transfer == nullptr || !transfer->HasHead() || size == nullptr) return FALSE;
  if (infoLevel == HTTP_QUERY_CONTENT_TYPE) return CopyHeader(transfer->Header("Content-Type"), buffer, size);
  if (infoLevel == HTTP_QUERY_CONTENT_RANGE) return CopyHeader(transfer->Header("Content-Range"), buffer, size);
  if (buffer == nullptr) return FALSE;
  if (infoLevel == (HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER)) {
    const auto status = static_cast<DWORD>(transfer->StatusCode());
    if (*size < sizeof status) return FALSE;
    std::memcpy(buffer, &status, sizeof status);
    *size = sizeof status;
    return TRUE;
  }
  if (infoLevel != HTTP_QUERY_CONTENT_LENGTH || !transfer->ContentLength()) return FALSE;
  auto* text = static_cast<char*>(buffer);
  // One byte is kept for the terminator.
  const auto [end, error] = std::to_chars(text, text + (*size > 0 ? *size - 1 : 0), *transfer->ContentLength());
  if (error != std::errc()) return FALSE;
  *end = '\0';
  *size = static_cast<DWORD>(end - text);
  return TRUE;
}

BOOL InternetReadFile(HINTERNET request, LPVOID buffer, DWORD size, LPDWORD read) {
  WebTransfer* transfer = FindTransfer(request);
  if (transfer == nullptr || buffer == nullptr || read == nullptr) return FALSE;
  const std::optional<std::size_t> got = transfer->Read(static_cast<char*>(buffer), size);
  *read = static_cast<DWORD>(got.value_or(0));
  return got.has_value();
}

BOOL InternetCloseHandle(HINTERNET handle) {
  return Handles().Remove(handle) != nullptr;
}
