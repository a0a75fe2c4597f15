// The pool of idle transfer engines.
#include "web/web_engine.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <linux/sockios.h>
#include <poll.h>
#include <sys/auxv.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <iterator>
#include <map>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include "base/process_wide.h"
#include "base/scoped_handle.h"
#include "web/web_limits.h"

namespace platform {
namespace {

// How many engines idle: as many as were in use at once lately, within these bounds.
constexpr std::size_t leastIdle = 4;
constexpr std::size_t mostIdle = 16;

// OpenSSL, if libcurl is built on it, would free its memory at the end of the process, even under a call. Its first
// user decides whether it does; without that the system frees all.
void KeepTlsToTheEnd() {
  constexpr std::uint64_t noExitHandler = 0x00080000;  // OPENSSL_INIT_NO_ATEXIT
  using Initialise = int (*)(std::uint64_t options, const void* settings);
  const auto initialise = reinterpret_cast<Initialise>(dlsym(RTLD_DEFAULT, "OPENSSL_init_crypto"));
  if (initialise != nullptr) initialise(noExitHandler, nullptr);
}

// libcurl counts the calls, so a host that uses libcurl too is not disturbed.
class CurlLibrary {
 public:
  CurlLibrary() {
    // libcurl writes the keys of connections to a file that the environment names. A process with more rights than its
    // user must not do that.
    if (getauxval(AT_SECURE) != 0) unsetenv("SSLKEYLOGFILE");
    KeepTlsToTheEnd();
    curl_global_init(CURL_GLOBAL_DEFAULT);
  }
  ~CurlLibrary() { curl_global_cleanup(); }
  CurlLibrary(const CurlLibrary&) = delete;
  CurlLibrary& operator=(const CurlLibrary&) = delete;
};

// libcurl makes the process ignore SIGPIPE while it closes connections, and then restores what it found. If two threads
// did so at once, the second could restore "ignored", so they take turns. A mutex would stay locked for ever in a child
// that the host forks meanwhile.
class ClosingTurn {
 public:
  ClosingTurn() {
    const pid_t self = getpid();
    for (pid_t found = 0; !holder.compare_exchange_strong(found, self);) {
      if (found == self) holder.wait(std::exchange(found, 0));
    }
  }
  ~ClosingTurn() {
    holder = 0;
    holder.notify_one();
  }
  ClosingTurn(const ClosingTurn&) = delete;
  ClosingTurn& operator=(const ClosingTurn&) = delete;

 private:
  static constinit inline std::atomic<pid_t> holder = 0;  // the process that closes
};

// What lies in a socket whose other end is on this machine.
struct Backlog {
  int unread = 0;
  int unsent = 0;  // not yet read by the other end; the system chooses the unit
};

std::map<int, Backlog> LocalSockets() {
  std::map<int, Backlog> found;
  // Not by the standard library, which ends the process when memory runs out here.
  const base::ScopedHandle<DIR*, &closedir> folder(opendir("/proc/self/fd"));
  while (const dirent* entry = folder ? readdir(folder.get()) : nullptr) {
    const int descriptor = std::atoi(entry->d_name);
    int domain = 0;
    socklen_t size = sizeof domain;
    if (getsockopt(descriptor, SOL_SOCKET, SO_DOMAIN, &domain, &size) != 0 || domain != AF_UNIX) continue;
    Backlog& backlog = found[descriptor];
    ioctl(descriptor, SIOCINQ, &backlog.unread);
    ioctl(descriptor, SIOCOUTQ, &backlog.unsent);
  }
  return found;
}

// libcurl wakes itself through a pair of sockets that it tells nobody about, and that would stay open in programs that
// the host starts. Other threads of the host may open pairs at the same time, so the two ends are recognised by what
// lies in them: a byte after one wake-up, and more after some further ones.
std::unique_ptr<CURLM, MultiDeleter> MakeMulti() {
  constexpr int wakeUps = 7;
  const std::map<int, Backlog> before = LocalSockets();
  std::unique_ptr<CURLM, MultiDeleter> multi(curl_multi_init());
  if (!multi || curl_multi_wakeup(multi.get()) != CURLM_OK) return multi;
  const std::map<int, Backlog> afterOne = LocalSockets();
  for (int i = 1; i < wakeUps; ++i) curl_multi_wakeup(multi.get());
  for (const auto& [descriptor, last] : LocalSockets()) {
    const auto found = afterOne.find(descriptor);
    if (before.contains(descriptor) || found == afterOne.end()) continue;
    const Backlog& first = found->second;
    const bool isReadEnd = first.unread == 1 && last.unread == wakeUps;
    const bool isWriteEnd = first.unsent > 0 && last.unsent == wakeUps * first.unsent;
    if (isReadEnd || isWriteEnd) fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  }
  return multi;
}

// A clock that goes on while the machine sleeps.
std::chrono::milliseconds Uptime() {
  timespec now{};
  clock_gettime(CLOCK_BOOTTIME, &now);
  return std::chrono::seconds(now.tv_sec) + std::chrono::milliseconds(now.tv_nsec / 1'000'000);
}

using Library = base::ScopedHandle<void*, &dlclose>;

// libcurl as it is loaded.
Library OpenCurl() {
  Dl_info info{};
  const bool found = dladdr(reinterpret_cast<const void*>(&curl_easy_init), &info) != 0;
  return Library(found ? dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD) : nullptr);
}

using Engine = std::unique_ptr<WebEngine>;

// Engines that idle. Closing one may take long, so that is done outside the lock.
class Pool {
 public:
  Pool() { idle.reserve(mostIdle + 1); }  // so that giving an engine back needs no memory

  // Null if no engine for that peer idles.
  Engine Take(const WebPeer& peer) {
    std::vector<Engine> outworn;
    outworn.reserve(mostIdle);
    const std::lock_guard lock(mutex);
    const auto isGood = [&peer](const Engine& engine) {
      const bool isTrusted = engine->Peer() == peer || engine->Peer().origin != peer.origin;
      return engine->IsOfThisProcess() && engine->IdleTime() <= webLimits.idle && isTrusted;
    };
    const auto firstOutworn = std::stable_partition(idle.begin(), idle.end(), isGood);
    std::move(firstOutworn, idle.end(), std::back_inserter(outworn));
    idle.erase(firstOutworn, idle.end());
    NoteUse(WebEngine::Count() - outworn.size() - idle.size() + 1);
    const auto isForPeer = [&peer](const Engine& engine) { return engine->Peer() == peer; };
    const auto last = std::find_if(idle.rbegin(), idle.rend(), isForPeer);
    if (last == idle.rend()) return nullptr;
    Engine engine = std::move(*last);
    idle.erase(std::prev(last.base()));
    return engine;
  }

  void GiveBack(Engine engine) {
    Engine tooMany;
    const std::lock_guard lock(mutex);
    if (!idle.empty()) idle.back()->Window().Free();  // so that one window idles, not one for each engine
    idle.push_back(std::move(engine));
    if (idle.size() <= std::clamp(mostInUse, leastIdle, mostIdle)) return;
    tooMany = std::move(idle.front());
    idle.erase(idle.begin());
  }

 private:
  // What idles for longer is closed, so that is how long a number is remembered.
  void NoteUse(std::size_t inUse) {
    const std::chrono::milliseconds now = Uptime();
    if (inUse < mostInUse && now - noted <= webLimits.idle) return;
    mostInUse = inUse;
    noted = now;
  }

  std::mutex mutex;
  std::vector<Engine> idle;   // in the order in which they were given back
  std::size_t mostInUse = 0;  // at once, lately
  std::chrono::milliseconds noted{};
};

Pool& ThePool() {
  static base::ProcessWide<CurlLibrary> library;  // outlives the engines
  static base::ProcessWide<Pool> pool;
  return *pool;
}

}  // namespace

void EasyDeleter::operator()(CURL* easy) const {
  const ClosingTurn turn;
  curl_easy_cleanup(easy);
}

void MultiDeleter::operator()(CURLM* multi) const {
  const ClosingTurn turn;
  curl_multi_cleanup(multi);
}

void ShareDeleter::operator()(CURLSH* share) const {
  curl_share_cleanup(share);
}

WebEngine::WebEngine(WebPeer served)
    : peer(std::move(served)), owner(getpid()), sessions(curl_share_init()), multi(MakeMulti()) {
  if (!sessions || !multi) throw std::bad_alloc();
  ++count;
  curl_share_setopt(sessions.get(), CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
  curl_multi_setopt(multi.get(), CURLMOPT_MAXCONNECTS, 1L);
}

WebEngine::~WebEngine() {
  --count;
  if (IsOfThisProcess()) return;
  // Not closed: that would end the parent's TLS connections.
  static_cast<void>(easy.release());
  static_cast<void>(multi.release());
  static_cast<void>(sessions.release());
}

bool WebEngine::IsOfThisProcess() const {
  return owner == getpid();
}

std::chrono::milliseconds WebEngine::IdleTime() const {
  return Uptime() - idleSince;
}

bool WebEngine::CanReuse(std::chrono::milliseconds longestIdle) const {
  if (connection == CURL_SOCKET_BAD || IdleTime() > longestIdle) return false;
  pollfd events{.fd = connection, .events = POLLIN | POLLPRI | POLLRDHUP, .revents = 0};
  return poll(&events, 1, 0) == 0;
}

// On a handle that had another transfer, libcurl before 8.1.1 takes a first header that begins with a blank for the
// rest of one that it has freed.
void WebEngine::BeginTransfer() {
  easy.reset(curl_easy_init());
  if (!easy || curl_easy_setopt(easy.get(), CURLOPT_SHARE, sessions.get()) != CURLE_OK) throw std::bad_alloc();
}

void WebEngine::BeginRequest() {
  curl_tlssessioninfo* session = nullptr;
  tls = {};
  if (curl_easy_getinfo(easy.get(), CURLINFO_TLS_SSL_PTR, &session) == CURLE_OK && session != nullptr) tls = *session;
}

void WebEngine::EndTransfer(bool whole) {
  connection = CURL_SOCKET_BAD;
  if (whole) curl_easy_getinfo(easy.get(), CURLINFO_ACTIVESOCKET, &connection);
  if (connection != CURL_SOCKET_BAD && HasUnreadTls()) connection = CURL_SOCKET_BAD;
  idleSince = Uptime();
  window.Wipe();
  curl_multi_remove_handle(multi.get(), easy.get());
  easy.reset();
}

// libcurl reads no more than the body; the TLS library may hold further bytes of the same record.
bool WebEngine::HasUnreadTls() const {
  if (tls.internals == nullptr) return false;
  using Ask = int (*)(const void* connection);
  static const auto ask = reinterpret_cast<Ask>(dlsym(OpenCurl().get(), "SSL_has_pending"));
  return tls.backend != CURLSSLBACKEND_OPENSSL || ask == nullptr || ask(tls.internals) != 0;
}

void PinCurl() {
  static_cast<void>(OpenCurl().release());
}

Engine TakeWebEngine(const WebPeer& peer) {
  Engine engine = ThePool().Take(peer);
  if (!engine) engine = std::make_unique<WebEngine>(peer);
  engine->BeginTransfer();
  return engine;
}

void GiveBackWebEngine(Engine engine) {
  ThePool().GiveBack(std::move(engine));
}

}  // namespace platform
