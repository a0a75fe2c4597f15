#include "account_fixture.h"

#include "nvsupport/nvsupport.h"

namespace nvsupport::testing {
namespace {

// The way to what only the operations of a session see.
struct Fields : CVServiceManager {
  using CVServiceManager::m_password;
  using CVServiceManager::m_savePassword;
  using CVServiceManager::m_userId;
};

}  // namespace

Step Sees(const std::string& title, std::function<void(HWND)> look) {
  return [title, look = std::move(look)](HWND dialog) {
    const windowing::DialogView* const view = PlayedUser::ViewOf(dialog);
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->title, title);
    if (look) look(dialog);
  };
}

Steps operator+(Steps left, const Steps& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

Steps FillSignIn(const std::string& user, const std::string& password) {
  return {Sees(signInTitle), Types(IDC_USER_ID, user), Types(IDC_PASSWORD, password)};
}

Steps FillAccount(const std::string& user, const std::string& password) {
  return {Sees(createTitle),
          Types(IDC_USER_ID, user),
          Types(IDC_PASSWORD, password),
          Types(IDC_RETYPE_PASSWORD, password),
          Types(IDC_YOUR_NAME, "Ann"),
          Types(IDC_EMAIL, "ann@host.example")};
}

std::string TextOf(HWND dialog, int id) {
  char text[200];
  return {text, GetDlgItemTextA(dialog, id, text, sizeof text)};
}

void AccountTest::Serve(const std::vector<std::string>& bodies) {
  std::vector<Reply> replies;
  for (const std::string& body : bodies) replies.push_back(HttpReply(200, body));
  Serve(std::move(replies), identity);
}

void AccountTest::Serve(std::vector<Reply> replies, const TlsIdentity& shown) {
  server = std::make_unique<ScriptedServer>(std::move(replies), NV_SERVICE_HOST, shown);
}

std::vector<std::string> AccountTest::Requests() const {
  std::vector<std::string> bodies;
  for (const std::string& request : server->Requests()) bodies.push_back(request.substr(request.find("\r\n\r\n") + 4));
  return bodies;
}

void AccountTest::OpenSession(const Credentials& saved) {
  std::filesystem::remove(profile);
  x3e491215("Test Product");
  if (saved == Credentials()) return;
  g_serviceManager->*& Fields::m_userId = saved.first;
  g_serviceManager->*& Fields::m_password = saved.second;
  g_serviceManager->*& Fields::m_savePassword = !saved.second.empty();
  g_serviceManager->SaveProfile();
  x3e491215("Test Product");
}

Credentials AccountTest::InForce() {
  return {g_serviceManager->*&Fields::m_userId, std::string((g_serviceManager->*&Fields::m_password).view())};
}

bool AccountTest::Run(const Steps& steps, Operation operation) {
  person.boxes.clear();
  person.boxOwners.clear();
  person.steps.assign(steps.begin(), steps.end());
  const bool done = (g_serviceManager->*operation)(nullptr);
  EXPECT_TRUE(person.steps.empty()) << person.steps.size() << " steps were not played";
  person.steps.clear();
  return done;
}

}  // namespace nvsupport::testing
