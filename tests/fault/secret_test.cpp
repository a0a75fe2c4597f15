// What stays in memory of a password and a token: nothing, once the session is gone. All memory that C++ takes in this
// program lies in one piece and is never used again, which is searched after a sign-in. What libcurl and the TLS
// library took and gave back is theirs to wipe.
#include <gtest/gtest.h>
#include <atomic>
#include <cstddef>
#include <cstdlib>
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

alignas(std::max_align_t) static char all[64 << 20];
static std::atomic<std::size_t> taken = 0;

void* operator new(std::size_t size) {
  constexpr std::size_t unit = __STDCPP_DEFAULT_NEW_ALIGNMENT__;
  return all + taken.fetch_add((size + unit) / unit * unit);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return operator new(size);
}
void operator delete(void*) noexcept {}
void operator delete(void*, std::size_t) noexcept {}

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
int Copies(const Backwards& text) {
  int copies = 0;
  for (const std::size_t stride : {1u, 2u}) {
    for (const char* memory = all; memory < all + taken; ++memory) {
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
  EXPECT_EQ(Copies(sessionToken), 0);
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
