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
using Operation = bool (CVServiceManager::*)(HWND);
using Credentials = std::pair<std::string, std::string>;  // user ID, password

inline constexpr char signInTitle[] = "Sign in to Your Account";
inline constexpr char createTitle[] = "Create an Online Account";
inline constexpr char deviceTitle[] = "Give your Computer a Name";
inline constexpr char exchangeFailed[] = "A problem occured communicating with the server";

inline constexpr auto Types = &PlayedUser::Types;
inline constexpr auto Clicks = &PlayedUser::Clicks;
// A look at the dialog that is in front, whose title must be this one.
Step Sees(const std::string& title, std::function<void(HWND)> look = {});
Steps operator+(Steps left, const Steps& right);
// Fills in the sign-in and the account dialog; nothing is pushed.
Steps FillSignIn(const std::string& user, const std::string& password);
Steps FillAccount(const std::string& user, const std::string& password);

std::string TextOf(HWND dialog, int id);

class AccountTest : public ::testing::Test {
 protected:
  ~AccountTest() override { CloseSession(); }

  // From now on requests are answered by these bodies, one each and the last one again and again.
  void Serve(const std::vector<std::string>& bodies);
  void Serve(std::vector<Reply> replies, const TlsIdentity& shown);
  // From now on nobody answers.
  void ServeNobody() { server.reset(); }
  // The bodies of the requests that the server has got.
  std::vector<std::string> Requests() const;

  // A new session, with nothing saved before it or with this user.
  void OpenSession(const Credentials& saved = {});
  // What the session holds now, and what is on disk.
  static Credentials InForce();
  std::string Profile() const { return ReadWholeFile(profile); }

  // Plays the steps, which must all be used up, around an operation.
  bool Run(const Steps& steps, Operation operation);

  TemporaryHome home;
  const ScopedVariable nowhere{"NV_CONNECT_TO", NV_SERVICE_HOST ":443:127.0.0.1:1"};
  TestAuthority authority;
  const TlsIdentity identity = authority.Issue(NV_SERVICE_HOST);
  std::unique_ptr<ScriptedServer> server;
  PlayedUser person;

 private:
  const std::string profile = home.folder / "data/Test Product-Service/settings.ini";
};

}  // namespace nvsupport::testing

#endif
