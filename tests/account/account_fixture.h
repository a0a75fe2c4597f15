// The account tests' world: a home of their own, a played user, and the account service as a scripted TLS server under
// its real name.
#ifndef NVSUPPORT_TESTS_ACCOUNT_ACCOUNT_FIXTURE_H
#define NVSUPPORT_TESTS_ACCOUNT_ACCOUNT_FIXTURE_H

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "account/service_manager.h"
#include "nvsupport/nvsupport.h"
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
inline Step Sees(const std::string& title, const std::function<void(HWND)>& look = {}) {
  return [=](HWND dialog) {
    const windowing::DialogView* const view = PlayedUser::ViewOf(dialog);
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->title, title);
    if (look) look(dialog);
  };
}
inline Steps operator+(Steps left, const Steps& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}
// Fills in the sign-in and the account dialog; nothing is pushed.
inline Steps FillSignIn(const std::string& user, const std::string& password) {
  return {Sees(signInTitle), Types(IDC_USER_ID, user), Types(IDC_PASSWORD, password)};
}
inline Steps FillAccount(const std::string& user, const std::string& password) {
  return {Sees(createTitle),
          Types(IDC_USER_ID, user),
          Types(IDC_PASSWORD, password),
          Types(IDC_RETYPE_PASSWORD, password),
          Types(IDC_YOUR_NAME, "Ann"),
          Types(IDC_EMAIL, "ann@host.example")};
}

inline std::string TextOf(HWND dialog, int id) {
  char text[200];
  return {text, GetDlgItemTextA(dialog, id, text, sizeof text)};
}

class AccountTest : public ::testing::Test {
 protected:
  ~AccountTest() override { CloseSession(); }

  // From now on requests are answered by these bodies, one each and the last one again and again.
  void Serve(const std::vector<std::string>& bodies) {
    std::vector<Reply> replies;
    replies.reserve(bodies.size());
    for (const std::string& body : bodies) replies.push_back(HttpReply(200, body));
    server = std::make_unique<ScriptedServer>(std::move(replies), NV_SERVICE_HOST, authority.Issue(NV_SERVICE_HOST));
  }
  // The bodies of the requests that the server has got.
  std::vector<std::string> Requests() const {
    std::vector<std::string> bodies;
    for (const std::string& sent : server->Requests()) bodies.push_back(sent.substr(sent.find("\r\n\r\n") + 4));
    return bodies;
  }

  // A new session, with nothing saved before it or with this user.
  void OpenSession(const Credentials& saved = {}) {
    std::filesystem::remove(profile);
    x3e491215("Test Product");
    if (saved == Credentials()) return;
    Enter(saved, !saved.second.empty());
    g_serviceManager->SaveProfile();
    x3e491215("Test Product");
  }
  // Sets the session's fields as the dialogs do.
  static void Enter(const Credentials& typed, bool savePassword) {
    g_serviceManager->*& Fields::m_userId = typed.first;
    g_serviceManager->*& Fields::m_password = typed.second;
    g_serviceManager->*& Fields::m_savePassword = savePassword;
  }
  // What the session holds now, and what is on disk.
  static Credentials InForce() {
    return {g_serviceManager->*&Fields::m_userId, std::string((g_serviceManager->*&Fields::m_password).view())};
  }
  std::string Profile() const { return ReadWholeFile(profile); }

  // Plays the steps, which must all be used up, around an operation.
  bool Run(const Steps& steps, Operation operation) {
    person.boxes.clear();
    person.boxOwners.clear();
    person.steps.assign(steps.begin(), steps.end());
    const bool done = (g_serviceManager->*operation)(nullptr);
    EXPECT_TRUE(person.steps.empty()) << person.steps.size() << " steps were not played";
    person.steps.clear();
    return done;
  }

  TemporaryHome home;
  const ScopedVariable nowhere{"NV_CONNECT_TO", NV_SERVICE_HOST ":443:127.0.0.1:1"};
  TestAuthority authority;
  std::unique_ptr<ScriptedServer> server;  // null: nobody answers
  PlayedUser person;

 private:
  // The way to what only the operations of a session see.
  struct Fields : CVServiceManager {
    using CVServiceManager::m_password;
    using CVServiceManager::m_savePassword;
    using CVServiceManager::m_userId;
  };

  const std::string profile = home.folder / "data/Test Product-Service/settings.ini";
};

}  // namespace nvsupport::testing

#endif
