// What stays in memory of a password and a token: nothing, once the session is gone. All memory that C++ takes in this
// program and libcurl take lies in a piece each and is never used again, which is searched after a sign-in. What
// libcurl took for a request, and the TLS library for anything, is theirs to wipe.
#include <curl/curl.h>
#include <gtest/gtest.h>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <new>
#include <string>
#include <utility>

#include "nvsupport/nvsupport.h"
#include "platform/linux/windowing/dialog_manager.h"
#include "resources/resource_ids.h"
#include "support/played_user.h"
#include "support/run_program.h"
#include "support/scripted_server.h"
#include "support/temporary_home.h"
#include "support/test_authority.h"
#include "support/wire_items.h"

struct Memory {
  alignas(std::max_align_t) char bytes[64 << 20];
  std::atomic<std::size_t> taken = 0;

  void* Take(std::size_t size) {
    constexpr std::size_t unit = __STDCPP_DEFAULT_NEW_ALIGNMENT__;
    return bytes + taken.fetch_add((size + unit) / unit * unit);
  }
};
// There before any object of the library takes memory.
static constinit Memory own{}, libcurls{};

void* operator new(std::size_t size) {
  return own.Take(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return operator new(size);
}
void operator delete(void*) noexcept {}
void operator delete(void*, std::size_t) noexcept {}

// Before the library is the first to use it.
[[maybe_unused]] static const CURLcode ready = curl_global_init_mem(
    CURL_GLOBAL_DEFAULT, [](std::size_t size) { return libcurls.Take(size); }, [](void*) {},
    [](void* memory, std::size_t size) {
      void* const larger = libcurls.Take(size);
      return memory != nullptr ? std::memmove(larger, memory, size) : larger;  // what lies behind it is ours, too
    },
    [](const char* text) { return std::strcpy(static_cast<char*>(libcurls.Take(std::strlen(text) + 1)), text); },
    [](std::size_t count, std::size_t size) { return libcurls.Take(count * size); });  // untouched memory is 0

namespace nvsupport {
namespace {

using namespace testing;

// Texts that are nowhere in this process unless somebody asks for them: they stand here backwards.
using Backwards = char[19];
constexpr std::size_t length = sizeof(Backwards) - 1;
constexpr Backwards password = "BpYcX2mLt9Rk3Wv7zQ";
constexpr Backwards sessionToken = "eVg1JfN6uZw8DsH4kT";

std::string Reveal(const Backwards& text) {
  return {std::rbegin(text) + 1, std::rend(text)};
}

// How often it stands in memory, in plain form and as it travels.
int Copies(const Backwards& text, const Memory& where = own) {
  int copies = 0;
  for (const std::size_t stride : {1u, 2u}) {
    for (const char* memory = where.bytes; memory < where.bytes + where.taken; ++memory) {
      std::size_t at = 0;
      while (at < length && memory[at * stride] == text[length - 1 - at]) ++at;
      if (at == length) ++copies;
    }
  }
  return copies;
}

void SignInAndSearch() {
  const TemporaryHome home;
  PlayedUser person;
  const auto typesPassword = [](HWND dialog) {
    std::string typed = Reveal(password);
    windowing::CoreEvents().OnTextEdited(GetDlgItem(dialog, IDC_PASSWORD), typed);
    platform::WipeText(typed);
  };
  person.steps = {PlayedUser::Types(IDC_USER_ID, "Ann"), typesPassword, PlayedUser::Clicks(IDOK)};
  x3e491215("Product");
  char token[20] = "";
  EXPECT_TRUE(xff99a5e4(nullptr, token));
  EXPECT_EQ(token[0], sessionToken[length - 1]);
  EXPECT_EQ(Copies(sessionToken) + Copies(sessionToken, libcurls), 0);
  EXPECT_EQ(Copies(password), 1) << "the session's";
  x3e491215("Other");
  EXPECT_EQ(Copies(password), 0);
}

// A process of its own is searched, so that nothing of the service is in its memory.
TEST(SecretsInMemory, AreGoneWithTheSession) {
  constexpr const char* searchedOne = "NV_TEST_SEARCHED";
  if (std::getenv(searchedOne) != nullptr) return SignInAndSearch();
  const auto answers = [signedIn = false](const std::string&) mutable {
    return HttpReply(200, Int(0) + (std::exchange(signedIn, true) ? Text(Reveal(sessionToken)) : Int(0)));
  };
  const TestAuthority authority;
  const ScriptedServer service(answers, NV_SERVICE_HOST, authority.Issue(NV_SERVICE_HOST));
  const ScopedVariable inherited(searchedOne, "yes");
  const ProgramResult searched = RunProgram({std::filesystem::read_symlink("/proc/self/exe")});
  EXPECT_EQ(searched.exitCode, 0) << searched.output;
}

}  // namespace
}  // namespace nvsupport
