// One HTTP POST exchange with a CGI program on the service host, as a typed channel: write the request, Send, read
// the reply, destroy. The body is exactly the bytes written, the reply exactly the body that comes back.
#ifndef NVSUPPORT_WIRE_WEB_BINARY_CGI_H
#define NVSUPPORT_WIRE_WEB_BINARY_CGI_H

#include <cstdint>

#include "platform/platform.h"
#include "wire/type_serializer.h"

namespace nvsupport {

class CWebBinaryCGI final : public CTypeSerializer {
 public:
  // path: on the service host. secure: over TLS on port 443, else port 80. Failures show at Send.
  CWebBinaryCGI(const char* path, bool secure);
  ~CWebBinaryCGI();
  CWebBinaryCGI(const CWebBinaryCGI&) = delete;
  CWebBinaryCGI& operator=(const CWebBinaryCGI&) = delete;

  void Write(const void* data, std::int32_t size) override;
  // Blocks until the reply begins, under a busy cursor; true if the reply can be read.
  bool Send();
  // True as soon as one byte of those asked for came.
  bool Read(void* data, std::int32_t size) override;

 private:
  platform::InternetHandle internet;
  platform::InternetHandle request;
  platform::InternetHandle connection;
  platform::DialUp dialUp;
  platform::SecretVector<std::uint8_t> buffer;  // the request, then what was read ahead
};

}  // namespace nvsupport

#endif
