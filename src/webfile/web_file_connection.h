// GET transfers from one web server: a download into a file, a stretch read into memory. Lives on the stack of an
// export for one transfer; owns its connection and request.
#ifndef NVSUPPORT_WEBFILE_WEB_FILE_CONNECTION_H
#define NVSUPPORT_WEBFILE_WEB_FILE_CONNECTION_H

#include <cstdint>
#include <string>
#include <string_view>

#include "nvsupport/nvsupport.h"
#include "platform/platform.h"

namespace nvsupport {

// What all transfers connect through. Null if the platform gave none: then every connect fails.
extern platform::InternetHandle& webSession;

class WebFileConnection {
 public:
  // host: name of the server. autodial: dial up when no connection is there. secure: over TLS.
  WebFileConnection(const char* host, bool autodial, bool secure);
  ~WebFileConnection();
  WebFileConnection(const WebFileConnection&) = delete;
  WebFileConnection& operator=(const WebFileConnection&) = delete;

  // Called between chunks, stops the transfer with false. May be null.
  void SetCallback(WebProgressCallback function, void* data);
  // Where a download writes its progress; owned by the host. May be null.
  void SetCounters(WebProgressCounters* progress) { counters = progress; }

  bool ConnectIfNeeded();
  // Sends a GET; true when the reply's head is there.
  bool OpenGet(const char* path);
  // The reply's status; one that counts as a failure if there is none.
  std::int32_t StatusCode() const;
  // Bytes, -1 when unknown.
  std::int64_t ContentLength() const;

  // Takes the reply's body into a temporary file beside `file` and moves it there at its end. On a failure neither an
  // old nor a new file is left, unless it was the status that failed.
  bool DownloadToFile(const char* file);
  bool DownloadFile(const char* path, const char* file);

  // length, or 0 if the transfer did not complete, or -1 if there was no body to read.
  std::int32_t ReadRange(const char* path, std::int64_t offset, std::int32_t length, void* buffer);
  std::int32_t ReadBody(void* buffer, std::int32_t length);

 private:
  enum class State : std::int32_t { unknown, connected, failed };

  // Connects if needed, opens the request and sends it; true when the reply's head is there. verb: null for GET.
  // header: one line or nothing.
  bool SendRequest(const char* verb, const char* path, DWORD flags, std::string_view header);
  // False if the host stops the transfer.
  bool GoesOn() const;
  // Of the reply, HTTP_QUERY_CONTENT_TYPE or the like; empty if it has none.
  std::string HeaderText(DWORD which) const;
  // False if a reply of a part says that it is another one than was asked for, or several.
  bool BringsRangeFrom(std::int64_t offset) const;
  // From the reply into an open file; true when the body is whole and written.
  bool ReceiveInto(HANDLE file);

  State state = State::unknown;
  WebProgressCallback callback = nullptr;
  void* callbackData = nullptr;
  WebProgressCounters* counters = nullptr;
  bool secure;
  platform::InternetHandle request;
  platform::InternetHandle connection;
  platform::DialUp dialUp;
  std::string host;
  bool autodial;
};

// Bytes asked for at a time.
inline constexpr DWORD transferChunk = 4096;
inline constexpr std::int32_t firstFailureStatus = 300;

}  // namespace nvsupport

#endif
