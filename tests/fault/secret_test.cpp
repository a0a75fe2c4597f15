// What stays in memory of a password and a token: nothing, once the session is gone. The process is searched for both
// after a sign-in, the service being a process of its own. What libcurl and the TLS library took and gave back is
// theirs to wipe: they get allocators here that do it.
#include <curl/curl.h>
#include <malloc.h>
#include <openssl/crypto.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>

#include "account/account_fixture.h"
#include "nvsupport/nvsupport.h"
#include "platform/linux/windowing/dialog_manager.h"

namespace nvsupport {
namespace {

using namespace testing;

void FreeWiped(void* memory) {
  if (memory != nullptr) explicit_bzero(memory, malloc_usable_size(memory));
  std::free(memory);
}
void* MoveWiped(void* memory, std::size_t size) {
  void* const moved = std::malloc(size);
  if (moved == nullptr || memory == nullptr) return moved;
  std::memcpy(moved, memory, std::min(size, malloc_usable_size(memory)));
  FreeWiped(memory);
  return moved;
}
// Before anybody has used the two.
[[maybe_unused]] const bool wiping =
    CRYPTO_set_mem_functions([](std::size_t size, const char*, int) { return std::malloc(size); },
                             [](void* memory, std::size_t size, const char*, int) { return MoveWiped(memory, size); },
                             [](void* memory, const char*, int) { FreeWiped(memory); }) == 1 &&
    curl_global_init_mem(CURL_GLOBAL_DEFAULT, std::malloc, FreeWiped, MoveWiped, strdup, std::calloc) == CURLE_OK;

// Texts that are nowhere in this process unless somebody asks for them: they stand here backwards.
using Backwards = char[19];
constexpr std::size_t length = sizeof(Backwards) - 1;
constexpr Backwards password = "BpYcX2mLt9Rk3Wv7zQ";
constexpr Backwards sessionToken = "eVg1JfN6uZw8DsH4kT";

std::string Reveal(const Backwards& text) {
  return {std::rbegin(text) + 1, std::rend(text)};
}

__attribute__((no_sanitize("address", "undefined"))) int CopiesIn(const char* memory, const char* end,
                                                                  const Backwards& text, std::size_t stride) {
  constexpr std::size_t overwritten = 8;  // characters: an allocator puts its books there when it gets them back
  int copies = 0;
  for (const char* const last = end - (length - 1) * stride; memory < last; ++memory) {
    std::size_t at = overwritten;
    while (at < length && memory[at * stride] == text[length - 1 - at]) ++at;
    if (at == length) ++copies;
  }
  return copies;
}

// How often it stands in the memory that can be written, its characters so many bytes apart.
int Copies(const Backwards& text, std::size_t stride) {
  constexpr std::uintptr_t shadow = std::uintptr_t{1} << 32;  // a sanitizer's books are larger than any memory
  int copies = 0;
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    std::uintptr_t begin = 0, end = 0;
    if (std::sscanf(line.c_str(), "%" SCNxPTR "-%" SCNxPTR, &begin, &end) != 2) continue;
    if (line.find(" rw") == std::string::npos || end - begin > shadow || line.find("[v") != std::string::npos) continue;
    copies += CopiesIn(reinterpret_cast<const char*>(begin), reinterpret_cast<const char*>(end), text, stride);
  }
  return copies;
}

class SecretsInMemory : public AccountTest {
 protected:
  // The service in a process of its own, until the object goes.
  SecretsInMemory() {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) return;
    link = ends[0];
    char route[200] = "";
    service = fork();
    if (service == 0) {
      close(link);
      Serve({Int(0) + Int(0), Int(0) + Text(Reveal(sessionToken))});
      const std::string ready = std::getenv("NV_CONNECT_TO");
      if (write(ends[1], ready.c_str(), ready.size()) < 0) _exit(1);
      while (read(ends[1], route, sizeof route) > 0) {
      }
      _exit(0);
    }
    close(ends[1]);
    if (read(link, route, sizeof route - 1) > 0) setenv("NV_CONNECT_TO", route, 1);
  }
  ~SecretsInMemory() override {
    close(link);
    waitpid(service, nullptr, 0);
  }

  static Step TypesPassword() {
    return [](HWND dialog) {
      std::string typed = Reveal(password);
      windowing::CoreEvents().OnTextEdited(GetDlgItem(dialog, IDC_PASSWORD), typed);
      platform::WipeText(typed);
    };
  }

 private:
  int link = -1;  // while it is open the service runs
  pid_t service = -1;
};

TEST_F(SecretsInMemory, AreGoneWithTheSession) {
  ASSERT_TRUE(wiping);
  OpenSession();
  person.steps = {Types(IDC_USER_ID, "Ann"), TypesPassword(), Clicks(IDOK)};
  char token[20] = "";
  EXPECT_TRUE(xff99a5e4(nullptr, token));
  EXPECT_EQ(Copies(sessionToken, 1), 1) << "the host's own";
  explicit_bzero(token, sizeof token);
  EXPECT_EQ(Copies(sessionToken, 1), 0);
  EXPECT_EQ(Copies(sessionToken, 2), 0);
  EXPECT_EQ(Copies(password, 1), 1) << "the session's";
  EXPECT_EQ(Copies(password, 2), 0);
  x3e491215("Other");
  EXPECT_EQ(Copies(password, 1), 0);
}

}  // namespace
}  // namespace nvsupport

// A sanitizer that overwrites what was given back would hide what the library leaves there.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
  return "max_free_fill_size=0";
}
