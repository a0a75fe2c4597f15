// URL and header lines of an HTTP request.
#include "web/web_request.h"

#include <curl/curl.h>

#include <memory>
#include <utility>

#include "base/ascii.h"

namespace platform {
namespace {

struct UrlDeleter {
  void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
struct TextDeleter {
  void operator()(char* text) const { curl_free(text); }
};

using Url = std::unique_ptr<CURLU, UrlDeleter>;

// Empty if the URL has no such part.
std::string PartOf(const Url& url, CURLUPart part, unsigned flags = 0) {
  char* text = nullptr;
  if (curl_url_get(url.get(), part, &text, flags) != CURLUE_OK) return {};
  const std::unique_ptr<char, TextDeleter> owned(text);
  return text;
}

// Escapes what would end the path in a URL or a request line.
std::string EscapedPath(std::string_view path) {
  std::string escaped;
  if (!path.starts_with('/')) escaped = "/";
  for (const char c : path) {
    if (c == ' ') {
      escaped += "%20";
    } else if (c == '#') {
      escaped += "%23";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

// "Name:value" as a line of a request.
std::optional<std::string> HeaderLine(std::string_view text) {
  while (text.ends_with('\n') || text.ends_with('\r')) text.remove_suffix(1);
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos || colon == 0 || base::HasControlCharacters(text)) return std::nullopt;
  const std::string_view value = base::Trim(text.substr(colon + 1), " \t");
  if (value.empty()) return std::nullopt;
  return std::string(text.substr(0, colon)).append(": ").append(value);
}

}  // namespace

std::optional<std::string> BuildUrl(const WebRequest& request) {
  if (request.host.empty() || base::HasControlCharacters(request.host) || base::HasControlCharacters(request.path)) {
    return std::nullopt;
  }
  const Url url(curl_url());
  // Set by itself, so that libcurl checks that it is a host and nothing else.
  if (!url || curl_url_set(url.get(), CURLUPART_SCHEME, request.secure ? "https" : "http", 0) != CURLUE_OK ||
      curl_url_set(url.get(), CURLUPART_HOST, request.host.c_str(), 0) != CURLUE_OK ||
      curl_url_set(url.get(), CURLUPART_PORT, std::to_string(request.port).c_str(), 0) != CURLUE_OK) {
    return std::nullopt;
  }
  std::string base = PartOf(url, CURLUPART_URL, CURLU_NO_DEFAULT_PORT);
  if (base.empty()) return std::nullopt;
  if (base.ends_with('/')) base.pop_back();
  return base + EscapedPath(request.path);
}

std::string ResolveUrl(const std::string& base, const char* reference) {
  const Url url(curl_url());
  // A scheme that libcurl does not know must fail the transfer, not end the redirects.
  if (!url || curl_url_set(url.get(), CURLUPART_URL, base.c_str(), CURLU_PATH_AS_IS) != CURLUE_OK ||
      curl_url_set(url.get(), CURLUPART_URL, reference,
                   CURLU_URLENCODE | CURLU_ALLOW_SPACE | CURLU_NON_SUPPORT_SCHEME) != CURLUE_OK) {
    return {};
  }
  return PartOf(url, CURLUPART_URL);
}

bool StaysOnTlsHost(const std::string& from, const std::string& to) {
  const Url before(curl_url());
  const Url behind(curl_url());
  if (!before || curl_url_set(before.get(), CURLUPART_URL, from.c_str(), 0) != CURLUE_OK) return false;
  if (!behind || curl_url_set(behind.get(), CURLUPART_URL, to.c_str(), 0) != CURLUE_OK) return false;
  return PartOf(behind, CURLUPART_SCHEME) == "https" &&
         base::ToLower(PartOf(before, CURLUPART_HOST)) == base::ToLower(PartOf(behind, CURLUPART_HOST));
}

std::string PublicPartOf(const std::string& url) {
  const Url parts(curl_url());
  constexpr unsigned anyForm = CURLU_PATH_AS_IS | CURLU_NON_SUPPORT_SCHEME;
  if (!parts || curl_url_set(parts.get(), CURLUPART_URL, url.c_str(), anyForm) != CURLUE_OK)
    return "a malformed address";
  for (const CURLUPart part :
       {CURLUPART_USER, CURLUPART_PASSWORD, CURLUPART_OPTIONS, CURLUPART_QUERY, CURLUPART_FRAGMENT}) {
    curl_url_set(parts.get(), part, nullptr, 0);
  }
  return PartOf(parts, CURLUPART_URL);
}

std::optional<std::vector<std::string>> BuildHeaders(const WebRequest& request, std::string_view extra,
                                                     std::size_t bodySize) {
  std::vector<std::string> texts;
  if (request.post) texts.push_back("Content-Length:" + std::to_string(bodySize));
  if (!request.agent.empty()) texts.push_back("User-Agent:" + request.agent);
  if (request.noCache) texts.emplace_back("Pragma:no-cache");
  if (!extra.empty()) texts.emplace_back(extra);

  std::vector<std::string> lines;
  for (const std::string& text : texts) {
    std::optional<std::string> line = HeaderLine(text);
    if (!line) return std::nullopt;
    lines.push_back(*std::move(line));
  }
  return lines;
}

}  // namespace platform
