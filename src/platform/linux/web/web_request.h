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

// The URL that a redirect to `reference` leads to in a reply to `base`; empty if that is no URL.
std::string ResolveUrl(const std::string& base, const char* reference);

// True if a redirect from one to the other leads neither out of TLS nor to another host.
bool StaysOnTlsHost(const std::string& from, const std::string& to);

// A URL without query and user, for texts that others may see.
std::string PublicPartOf(const std::string& url);

// The header lines behind Host, in their order. extra: one further header, with or without a line end, or nothing.
// No value if a line would be malformed.
std::optional<std::vector<std::string>> BuildHeaders(const WebRequest& request, std::string_view extra,
                                                     std::size_t bodySize);

}  // namespace platform

#endif
