// Finds the trust store.
#include "web/web_trust.h"

#include <curl/curl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>

namespace platform {
namespace {

// Empty if the variable is not set.
std::string Variable(const char* name) {
  const char* const value = secure_getenv(name);
  return value != nullptr ? value : "";
}

void AddState(std::vector<std::int64_t>& state, const std::string& path) {
  struct stat s{};
  if (stat(path.c_str(), &s) != 0) return;
  state.insert(state.end(), {static_cast<std::int64_t>(s.st_dev), static_cast<std::int64_t>(s.st_ino), s.st_size,
                             s.st_mtim.tv_sec, s.st_mtim.tv_nsec, s.st_ctim.tv_sec, s.st_ctim.tv_nsec});
}

}  // namespace

TrustStore FindTrustStore() {
  TrustStore store{.file = Variable("SSL_CERT_FILE"), .folders = Variable("SSL_CERT_DIR"), .state = {}};
  if (store.file.empty() && store.folders.empty()) {
    const char* const usual = curl_version_info(CURLVERSION_NOW)->cainfo;
    if (usual != nullptr) store.file = usual;
  }
  AddState(store.state, store.file);
  for (std::size_t at = 0; at < store.folders.size();) {
    const std::size_t end = std::min(store.folders.find(':', at), store.folders.size());
    AddState(store.state, store.folders.substr(at, end - at));
    at = end + 1;
  }
  return store;
}

}  // namespace platform
