// The texts of requests come in the client's code page, whichever that is; the service keeps them all as UTF-8.
#ifndef NVSUPPORT_SERVICE_UTF8_H
#define NVSUPPORT_SERVICE_UTF8_H

#include <string>
#include <string_view>

namespace nvsupport::service {

// Returns well-formed UTF-8 as it is, and takes any other text as Windows-1252. Bytes that are no character there
// become U+FFFD, and so do zero characters, which a database cannot hold.
std::string ToUtf8(std::string_view text);

}  // namespace nvsupport::service

#endif
