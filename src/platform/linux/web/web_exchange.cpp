// HTTP exchanges on libcurl's multi interface.
#include "web/web_exchange.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "base/ascii.h"
#include "trace.h"
#include "web/web_limits.h"

namespace platform {
namespace {

constexpr std::size_t largestWindow = 2 * webReceiveSize;
constexpr std::size_t headLimit =
    std::size_t{256} * 1024;  // bytes of all heads in one exchange, interim replies included
constexpr int redirectLimit = 10;
constexpr long switchingProtocols = 101;

bool IsRedirect(long status) {
  return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

bool KeepsMethod(long status) {
  return status == 307 || status == 308;
}

// Scheme, host and port.
std::string OriginOf(const std::string& url) {
  return url.substr(0, url.find_first_of("/?#", url.find("://") + 3));
}

// The only transfer coding that is accepted. The others compress the body, and nobody asked for that.
bool IsPlainCoding(std::string_view line) {
  const auto isSame = [](std::string_view text, std::string_view lower) {
    return std::equal(text.begin(), text.end(), lower.begin(), lower.end(),
                      [](char a, char b) { return base::ToLower(a) == b; });
  };
  constexpr std::string_view name = "transfer-encoding:";
  if (!isSame(line.substr(0, name.size()), name)) return true;
  const std::string_view coding = base::Trim(line.substr(name.size()), " \t\r\n");
  return isSame(coding, "chunked") || isSame(coding, "identity");
}

long long MillisecondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

WebExchange::~WebExchange() {
  Release();
}

bool WebExchange::Send(WebRequest request, std::string_view extraHeader, std::string_view body) {
  if (!call) return false;
  std::optional<std::string> url = BuildUrl(request);
  if (!url) {
    Trace(TraceArea::web, "host \"%s\" and its path make no address", request.host.c_str());
    return false;
  }
  connectTo = MakeConnectToList();
  sentBody.assign(body.begin(), body.end());
  start = Clock::now();
  if (request.post) {
    lastMoment = start + webLimits.exchange;
    bodyRoom = webLimits.replySize;
  }
  for (int hop = 0; hop <= redirectLimit; ++hop) {
    const std::string_view sent(sentBody.data(), sentBody.size());
    if (!SendOnce(*url, request, extraHeader, sent, start + webLimits.head)) return false;
    const std::string target = request.followRedirects ? RedirectTarget(*url) : std::string();
    if (target.empty()) return true;
    if (IsTraced(TraceArea::web)) Trace(TraceArea::web, "redirect to %s", PublicPartOf(target).c_str());
    // What goes over TLS is meant for one host, so a redirect leads neither out of TLS nor to another host.
    if (request.secure && !StaysOnTlsHost(*url, target)) break;
    url = target;
    request.secure = target.starts_with("https:");
    request.post = request.post && KeepsMethod(StatusCode());
  }
  // A redirect that is not followed is no reply; nothing of it can be read.
  Trace(TraceArea::web, "redirect not followed");
  phase = Phase::failed;
  headDone = false;
  engine->Window().Clear();
  return false;
}

void WebExchange::Release() {
  if (!engine || !engine->IsOfThisProcess()) return engine.reset();
  // The caller may not have read the end of a reply that has arrived; only behind it can the connection be kept.
  if (phase == Phase::running && headDone) Advance();
  engine->EndTransfer(phase == Phase::ended);
  // After a failure libcurl may keep the connection although only half a request went out on it.
  if (phase == Phase::failed) return engine.reset();
  GiveBackWebEngine(std::move(engine));
}

bool WebExchange::SendOnce(const std::string& url, const WebRequest& request, std::string_view extraHeader,
                           std::string_view body, Clock::time_point until) {
  std::optional<std::vector<std::string>> lines = BuildHeaders(request, extraHeader, body.size());
  if (!lines) return false;
  // A name without a value removes one of libcurl's own headers.
  for (const char* unwanted : {"Accept:", "Content-Type:", "Expect:"}) lines->emplace_back(unwanted);

  if (IsTraced(TraceArea::web)) {
    Trace(TraceArea::web, "%s %s", request.post ? "POST" : "GET", PublicPartOf(url).c_str());
  }
  Release();
  phase = Phase::failed;
  once = request.post;
  isSecret = request.secure;
  begun = headDone = false;
  headers = MakeCurlList(*lines);
  const TrustStore trust = request.secure ? FindTrustStore() : TrustStore();
  engine = TakeWebEngine({.origin = OriginOf(url), .trust = trust});
  CURL* const easy = engine->Easy();
  if (!SetTransferOptions(easy, url, request, trust, headers.get(), connectTo.get(), body)) return false;
  const bool reuses = engine->CanReuse(request.post ? webLimits.idleBeforeBody : webLimits.idle);
  curl_easy_setopt(easy, CURLOPT_FRESH_CONNECT, reuses ? 0L : 1L);
  reason[0] = '\0';
  curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, reason);
  curl_easy_setopt(easy, CURLOPT_PREREQFUNCTION, &OnRequest);
  curl_easy_setopt(easy, CURLOPT_PREREQDATA, this);
  curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &OnHead);
  curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
  curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &OnBody);
  curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
  if (curl_multi_add_handle(engine->Multi(), easy) != CURLM_OK) return false;

  phase = Phase::running;
  paused = false;
  Drive(until, [this] { return headDone; });
  if (headDone) Trace(TraceArea::web, "status %ld after %lld ms", StatusCode(), MillisecondsSince(start));
  return headDone;
}

std::optional<std::size_t> WebExchange::Read(char* data, std::size_t size) {
  if (!HasUnread()) Drive(std::min(Clock::now() + webLimits.silence, lastMoment), [this] { return HasUnread(); });
  if (!HasUnread()) return phase == Phase::ended ? std::optional<std::size_t>(0) : std::nullopt;
  return engine->Window().Take(data, size);
}

long WebExchange::StatusCode() const {
  long status = 0;
  curl_easy_getinfo(engine->Easy(), CURLINFO_RESPONSE_CODE, &status);
  return status;
}

std::optional<std::int64_t> WebExchange::ContentLength() const {
  // For some statuses libcurl assumes an empty body, whatever the reply says.
  if (Header("Content-Length") == nullptr) return std::nullopt;
  curl_off_t length = -1;
  curl_easy_getinfo(engine->Easy(), CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
  return length < 0 ? std::nullopt : std::optional<std::int64_t>(length);
}

const char* WebExchange::Header(const char* name) const {
  curl_header* header = nullptr;
  return curl_easy_header(engine->Easy(), name, 0, CURLH_HEADER, -1, &header) == CURLHE_OK ? header->value : nullptr;
}

std::string WebExchange::RedirectTarget(const std::string& url) const {
  // libcurl gives the target only after the body, and that is not waited for.
  const char* location = IsRedirect(StatusCode()) ? Header("Location") : nullptr;
  return location != nullptr ? ResolveUrl(url, location) : std::string();
}

template <typename Done>
void WebExchange::Drive(Clock::time_point until, Done done) {
  while (phase == Phase::running && !done()) {
    if (Clock::now() >= until) return End(CURLE_OPERATION_TIMEDOUT);
    Advance();
    if (phase == Phase::running && !done()) Wait(until);
  }
}

void WebExchange::Advance() {
  if (!HasUnread()) engine->Window().Clear();
  if (paused) {
    paused = false;
    curl_easy_pause(engine->Easy(), CURLPAUSE_CONT);
    if (HasUnread()) return;
  }
  int running = 0;
  if (curl_multi_perform(engine->Multi(), &running) != CURLM_OK) return End(CURLE_FAILED_INIT);
  int left = 0;
  while (const CURLMsg* message = curl_multi_info_read(engine->Multi(), &left)) {
    if (message->msg == CURLMSG_DONE) End(message->data.result);
  }
}

void WebExchange::Wait(Clock::time_point until) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now()).count();
  // Fits into an int, because every limit does.
  if (left > 0 && curl_multi_poll(engine->Multi(), nullptr, 0, static_cast<int>(left), nullptr) != CURLM_OK) {
    End(CURLE_FAILED_INIT);
  }
}

void WebExchange::End(CURLcode result) {
  // A server that closes before the announced length counts as the end of the body; a chunk that is cut does not.
  const bool shortBody = result == CURLE_PARTIAL_FILE && ContentLength().has_value();
  // Given up while a name was looked up: the thread that does that ends by itself, and needs libcurl until then.
  curl_off_t lookup = 0;
  curl_easy_getinfo(engine->Easy(), CURLINFO_NAMELOOKUP_TIME_T, &lookup);
  if (result == CURLE_OPERATION_TIMEDOUT && !begun && lookup == 0) PinCurl();
  phase = headDone && (result == CURLE_OK || shortBody) ? Phase::ended : Phase::failed;
  if (IsTraced(TraceArea::web)) TraceEnd(result);
}

void WebExchange::TraceEnd(CURLcode result) const {
  curl_off_t received = 0;
  curl_easy_getinfo(engine->Easy(), CURLINFO_SIZE_DOWNLOAD_T, &received);
  // libcurl's text quotes a malformed proxy address as it stands in the environment, with its password.
  const bool mayTell = reason[0] != '\0' && (std::strstr(reason, "proxy") == nullptr || !std::strchr(reason, '\''));
  const char* const outcome = result == CURLE_OK ? "whole" : mayTell ? reason : curl_easy_strerror(result);
  Trace(TraceArea::web, "%lld bytes of the body after %lld ms: %s", static_cast<long long>(received),
        MillisecondsSince(start), outcome);
}

int WebExchange::OnRequest(void* exchange, char*, char*, int, int) {
  auto* self = static_cast<WebExchange*>(exchange);
  // If a kept connection turns out dead libcurl sends the request again, though the server may have acted on it.
  const bool again = std::exchange(self->begun, true);
  self->engine->BeginRequest();
  return again && self->once ? CURL_PREREQFUNC_ABORT : CURL_PREREQFUNC_OK;
}

std::size_t WebExchange::OnHead(char* data, std::size_t unit, std::size_t size, void* exchange) {
  auto* self = static_cast<WebExchange*>(exchange);
  const std::string_view line(data, unit * size);
  self->headBytes += line.size();
  // Nobody asked to switch protocols. libcurl would take what follows for the body of a reply that never comes.
  if (self->headBytes > headLimit || self->StatusCode() == switchingProtocols || !IsPlainCoding(line)) return 0;
  const bool blank = line == "\r\n" || line == "\n";
  if (blank && self->StatusCode() >= 200) self->headDone = true;
  return line.size();
}

std::size_t WebExchange::OnBody(char* data, std::size_t unit, std::size_t size, void* exchange) try {
  auto* self = static_cast<WebExchange*>(exchange);
  const std::size_t arrived = unit * size;
  const std::size_t taken = std::min(arrived, self->bodyRoom);
  ReceiveWindow& window = self->engine->Window();
  if (arrived > largestWindow - window.Size()) {
    self->paused = true;
    return CURL_WRITEFUNC_PAUSE;
  }
  window.Append(data, taken);
  self->bodyRoom -= taken;
  // So that no token stays in libcurl's buffer.
  if (self->isSecret) SecureZeroMemory(data, arrived);
  return taken;  // fewer than `size` end the transfer
} catch (const std::bad_alloc&) {
  return 0;
}

}  // namespace platform
