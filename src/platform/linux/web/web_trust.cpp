// Finds the trust store.
#include "web/web_trust.h"

#include <curl/curl.h>
#include <sys/stat.h>

#include <cstdlib>
#include <sstream>

namespace platform {
namespace {

// Empty if the variable is not set.
std::string Variable(const char* name) {
  const char* const value = secure_getenv(name);
  return value != nullptr ? value : "";
}

void AddState(std::vector<std::int64_t>& state, const std::string& path) {
  struct stat s {};
  if (stat(path.c_str(), &s) != 0) return;
  for (const auto number : {static_cast<std::int64_t>(s.st_dev), static_cast<std::int64_t>(s.st_ino),
                            std::int64_t{s.st_size}, std::int64_t{s.st_mtim.tv_sec}, std::int64_t{s.st_mtim.tv_nsec},
                            std::int64_t{s.st_ctim.tv_sec}, std::int64_t{s.st_ctim.tv_nsec}}) {
    state.push_back(number);
  }
}

}  // namespace

TrustStore FindTrustStore() {
  TrustStore store{.file = Variable("SSL_CERT_FILE"), .folders = Variable("SSL_CERT_DIR"), .state = {}};
  const char* const usual = curl_version_info(CURLVERSION_NOW)->cainfo;
  if (store.file.empty() && store.folders.empty() && usual != nullptr) store.file = usual;
  AddState(store.state, store.file);
  std::istringstream folders(store.folders);
  for (std::string folder; std::getline(folders, folder, ':');) AddState(store.state, folder);
  return store;
}

}  // namespace platform
