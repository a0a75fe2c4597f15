// The texts of requests come in whatever code page a client has; the service keeps them in one form.
#ifndef NVSUPPORT_SERVICE_UTF8_H
#define NVSUPPORT_SERVICE_UTF8_H

#include <string>
#include <string_view>

namespace nvsupport::service {

// The text in UTF-8: as it is if it is well-formed, else taken as Windows-1252. Bytes that stand for no character
// become U+FFFD, and so do zero characters, which a database does not hold.
std::string ToUtf8(std::string_view text);

}  // namespace nvsupport::service

#endif
