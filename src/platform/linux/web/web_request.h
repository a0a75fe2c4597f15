// The text of an HTTP request: its URL and its header lines, checked, and which redirect it may follow (one over TLS
// stays on TLS and on its host). Touches no network.
#ifndef NVSUPPORT_PLATFORM_LINUX_WEB_REQUEST_H
#define NVSUPPORT_PLATFORM_LINUX_WEB_REQUEST_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "web_transfer.h"

namespace platform {

// No value for a host or path that cannot be part of a URL.
std::optional<std::string> BuildUrl(const WebRequest& request);

// The URL that `reference`, as a redirect gives it, means in a reply to `base`; empty if it means none.
std::string ResolveUrl(const std::string& base, const char* reference);

// Whether a redirect between the two leads neither out of TLS nor to another host.
bool StaysOnTlsHost(const std::string& from, const std::string& to);

// A URL as others may see it: without query and user.
std::string PublicPartOf(const std::string& url);

// The header lines behind Host, in their order. extra: one further header, with or without a line end, or nothing.
// No value if a line would not be well-formed.
std::optional<std::vector<std::string>> BuildHeaders(const WebRequest& request, std::string_view extra,
                                                     std::size_t bodySize);

}  // namespace platform

#endif
