// The account tests' world: a home of their own, a played user, and the account service as a scripted TLS server under
// its real name.
#ifndef NVSUPPORT_TESTS_ACCOUNT_ACCOUNT_FIXTURE_H
#define NVSUPPORT_TESTS_ACCOUNT_ACCOUNT_FIXTURE_H

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/service_manager.h"
#include "resources/resource_ids.h"
#include "support/played_user.h"
#include "support/scripted_server.h"
#include "support/temporary_home.h"
#include "support/test_authority.h"
#include "support/wire_items.h"

namespace nvsupport::testing {

using Step = PlayedUser::Step;
using Steps = std::vector<Step>;

inline constexpr char signInTitle[] = "Sign in to Your Account";
inline constexpr char createTitle[] = "Create an Online Account";
inline constexpr char deviceTitle[] = "Give your Computer a Name";

// A reply with that body.
Reply Items(const std::string& body);

inline constexpr auto Types = &PlayedUser::Types;
inline constexpr auto Clicks = &PlayedUser::Clicks;
// A look at the dialog that is in front, whose title must be this one.
Step Sees(const std::string& title, std::function<void(HWND)> look = {});
Steps operator+(Steps left, const Steps& right);
// Fills in the sign-in and the account dialog; nothing is pushed.
Steps FillSignIn(const std::string& user, const std::string& password);
Steps FillAccount(const std::string& user, const std::string& password);

std::string TextOf(HWND dialog, int id);

using Credentials = std::pair<std::string, std::string>;  // user ID, password

class AccountTest : public ::testing::Test {
 protected:
  AccountTest();
  ~AccountTest() override;

  // From now on requests are answered by these, one each and the last one again and again.
  void Serve(std::vector<Reply> replies);
  void Serve(ScriptedServer::Script script, const TlsIdentity& identity);
  // From now on nobody answers.
  void ServeNobody();
  // The bodies of the requests that the server has got, and their operation numbers.
  std::vector<std::string> Bodies() const;
  std::vector<int> Operations() const;

  // A new session with this saved profile; an empty text means none. The text of a profile file.
  void OpenSession(const std::string& profile = {});
  static std::string ProfileOf(const std::string& user, const std::string& password = {});
  std::string Profile() const;

  // Plays the steps, which must all be used up, around an operation.
  bool Run(const Steps& steps, bool (CVServiceManager::*operation)(HWND));
  // What the session holds, as its sign-in dialog opens with it: with no user ID, no password shows.
  Credentials InForce();

  TemporaryHome home;
  TestAuthority authority;
  TlsIdentity identity;
  std::unique_ptr<ScriptedServer> server;
  PlayedUser person;

 private:
  ScopedVariable trust;
  ScopedVariable connectTo{"NV_CONNECT_TO", ""};
};

}  // namespace nvsupport::testing

#endif
