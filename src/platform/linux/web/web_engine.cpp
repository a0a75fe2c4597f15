// The pool of idle transfer engines.
#include "web/web_engine.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <new>
#include <set>
#include <utility>
#include <vector>

#include "base/scoped_handle.h"
#include "web/web_limits.h"
#include "web/web_options.h"

namespace platform {
namespace {

constexpr std::size_t mostIdle = 4;

// libcurl counts the calls, so a host that uses libcurl too is not disturbed.
class CurlLibrary {
 public:
  CurlLibrary() { curl_global_init(CURL_GLOBAL_DEFAULT); }
  ~CurlLibrary() { curl_global_cleanup(); }
  CurlLibrary(const CurlLibrary&) = delete;
  CurlLibrary& operator=(const CurlLibrary&) = delete;
};

// Descriptors of sockets that lead to this machine alone.
std::set<int> LocalSockets() {
  std::set<int> found;
  // The standard library's walk ends the process when memory runs out.
  const base::ScopedHandle<DIR*, &closedir> folder(opendir("/proc/self/fd"));
  while (const dirent* entry = folder ? readdir(folder.get()) : nullptr) {
    const int descriptor = std::atoi(entry->d_name);
    int domain = 0;
    socklen_t size = sizeof domain;
    if (getsockopt(descriptor, SOL_SOCKET, SO_DOMAIN, &domain, &size) == 0 && domain == AF_UNIX) {
      found.insert(descriptor);
    }
  }
  return found;
}

// libcurl wakes itself through a pair of sockets that it tells nobody of and leaves open in programs that the host
// starts. They are known by the one byte in them after a wake-up, because the host may open others at the same time.
std::unique_ptr<CURLM, MultiDeleter> MakeMulti() {
  const std::set<int> before = LocalSockets();
  std::unique_ptr<CURLM, MultiDeleter> multi(curl_multi_init());
  if (!multi || curl_multi_wakeup(multi.get()) != CURLM_OK) return multi;
  for (const int descriptor : LocalSockets()) {
    int unread = 0;
    int unsent = 0;  // not yet read by the other end
    ioctl(descriptor, SIOCINQ, &unread);
    ioctl(descriptor, SIOCOUTQ, &unsent);
    if (!before.contains(descriptor) && (unread == 1 || unsent > 0)) fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  }
  return multi;
}

using Engine = std::unique_ptr<WebEngine>;

// Closing one can take its time, so it is done outside the lock.
class Pool {
 public:
  Pool() { idle.reserve(mostIdle + 1); }  // giving back must not run out of memory

  // Null if none idles.
  Engine Take() {
    const auto oldest = std::chrono::steady_clock::now() - webLimits.idle;
    std::vector<Engine> outworn;
    outworn.reserve(mostIdle);
    const std::lock_guard lock(mutex);
    const auto isFresh = [oldest](const Engine& engine) {
      return engine->IsOfThisProcess() && engine->idleSince >= oldest;
    };
    const auto firstOutworn = std::stable_partition(idle.begin(), idle.end(), isFresh);
    std::move(firstOutworn, idle.end(), std::back_inserter(outworn));
    idle.erase(firstOutworn, idle.end());
    if (idle.empty()) return nullptr;
    Engine last = std::move(idle.back());
    idle.pop_back();
    return last;
  }

  void GiveBack(Engine engine) {
    engine->idleSince = std::chrono::steady_clock::now();
    Engine tooMany;
    const std::lock_guard lock(mutex);
    idle.push_back(std::move(engine));
    if (idle.size() <= mostIdle) return;
    tooMany = std::move(idle.front());
    idle.erase(idle.begin());
  }

 private:
  std::mutex mutex;
  std::vector<Engine> idle;  // in the order in which they came
};

Pool& ThePool() {
  static const CurlLibrary library;  // outlives the engines
  static Pool pool;
  return pool;
}

}  // namespace

WebEngine::WebEngine() : owner(getpid()), multi(MakeMulti()), easy(curl_easy_init()) {
  if (!multi || !easy) throw std::bad_alloc();
}

WebEngine::~WebEngine() {
  if (IsOfThisProcess()) return;
  // Closing would tell the parent's servers goodbye.
  static_cast<void>(easy.release());
  static_cast<void>(multi.release());
}

bool WebEngine::IsOfThisProcess() const {
  return owner == getpid();
}

void PinCurl() {
  Dl_info info{};
  // The handle stays open: that is the pin.
  if (dladdr(reinterpret_cast<const void*>(&curl_easy_init), &info) != 0)
    dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD);
}

std::unique_ptr<WebEngine> TakeWebEngine() {
  Engine engine = ThePool().Take();
  return engine ? std::move(engine) : std::make_unique<WebEngine>();
}

void GiveBackWebEngine(std::unique_ptr<WebEngine> engine) {
  ThePool().GiveBack(std::move(engine));
}

}  // namespace platform
