// One HTTP exchange: the seam between the web client, which has the published names and their handles, and the plugin
// that talks to the network.
#ifndef NVSUPPORT_PLATFORM_LINUX_WEB_TRANSFER_H
#define NVSUPPORT_PLATFORM_LINUX_WEB_TRANSFER_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "types.h"

namespace platform {

struct WebRequest {
  std::string agent;
  std::string host;
  WORD port = 0;
  std::string path;
  bool post = false;
  bool secure = false;
  bool followRedirects = false;
  bool noCache = false;
};

class WebTransfer {
 public:
  virtual ~WebTransfer() = default;

  // Sends the request, follows redirects if it says so, and waits for the head of the final reply. extraHeader: one
  // line or nothing. One call per object.
  virtual bool Send(WebRequest request, std::string_view extraHeader, std::string_view body) = 0;
  // Waits for at least one byte and copies up to `size`; 0 at the end of the body. No value if the transfer failed.
  virtual std::optional<std::size_t> Read(char* data, std::size_t size) = 0;

  // True when the head of the final reply is there. The three functions below need that.
  virtual bool HasHead() const = 0;
  virtual long StatusCode() const = 0;
  // The length of the body; no value if the reply does not give it.
  virtual std::optional<std::int64_t> ContentLength() const = 0;
  // The value of a header; null if the reply does not have it.
  virtual const char* Header(const char* name) const = 0;
};

}  // namespace platform

// The one function that the web plugin exports: makes a transfer, which the caller deletes. Null if the caller is of
// another version of the library, whose classes may be laid out differently. Throws std::bad_alloc.
extern "C" using NvMakeWebTransfer = platform::WebTransfer * (*)(const char* version);

#endif
