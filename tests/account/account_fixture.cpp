#include "account_fixture.h"

#include <cstdlib>

#include "account/credentials.h"
#include "nvsupport/nvsupport.h"

namespace nvsupport::testing {
namespace {

constexpr char product[] = "Test Product";

std::string TitleOf(HWND dialog) {
  const user::DialogView* const view = user::ViewOf(dialog);
  return view != nullptr ? view->title : "";
}

}  // namespace

Reply Items(const std::string& body) {
  return HttpReply(200, body);
}

Step Sees(const std::string& title, std::function<void(HWND)> look) {
  return [title, look = std::move(look)](HWND dialog) {
    EXPECT_EQ(TitleOf(dialog), title);
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

AccountTest::AccountTest()
    : identity(authority.Issue(NV_SERVICE_HOST)), trust("SSL_CERT_FILE", home.folder / "authority.pem") {
  WriteWholeFile(home.folder / "authority.pem", authority.Certificate());
  ServeNobody();
}

AccountTest::~AccountTest() {
  CloseSession();
}

void AccountTest::Serve(std::vector<Reply> replies) {
  server = std::make_unique<ScriptedServer>(std::move(replies), &identity);
  setenv("NV_CONNECT_TO", server->ConnectTo(NV_SERVICE_HOST, 443).c_str(), 1);
}

void AccountTest::Serve(ScriptedServer::Script script, const TlsIdentity& shown) {
  server = std::make_unique<ScriptedServer>(std::move(script), &shown);
  setenv("NV_CONNECT_TO", server->ConnectTo(NV_SERVICE_HOST, 443).c_str(), 1);
}

void AccountTest::ServeNobody() {
  server.reset();
  setenv("NV_CONNECT_TO", NV_SERVICE_HOST ":443:127.0.0.1:1", 1);
}

std::vector<std::string> AccountTest::Bodies() const {
  std::vector<std::string> bodies;
  for (const std::string& request : server != nullptr ? server->Requests() : std::vector<std::string>()) {
    bodies.push_back(request.substr(request.find("\r\n\r\n") + 4));
  }
  return bodies;
}

std::vector<int> AccountTest::Operations() const {
  std::vector<int> operations;
  for (const std::string& body : Bodies()) operations.push_back(body.empty() ? -1 : body[0]);
  return operations;
}

void AccountTest::OpenSession(const std::string& profile) {
  const std::filesystem::path path = home.folder / "data/Test Product-Service/settings.ini";
  std::filesystem::remove(path);
  if (!profile.empty()) WriteWholeFile(path, profile);
  x3e491215(product);
}

std::string AccountTest::ProfileOf(const std::string& user, const std::string& password) {
  // The file's keys are sorted.
  std::string profile;
  if (!password.empty()) {
    profile = "Passwd=";
    for (const unsigned code : MaskCredential(EncodeCredential(password))) {
      for (const unsigned digit : {code >> 4, code & 15}) profile += "0123456789abcdef"[digit];
    }
    profile += '\n';
  }
  return profile + "UserID=" + user + '\n';
}

std::string AccountTest::Profile() const {
  return ReadWholeFile(home.folder / "data/Test Product-Service/settings.ini");
}

bool AccountTest::Run(const Steps& steps, bool (CVServiceManager::*operation)(HWND)) {
  person.steps.assign(steps.begin(), steps.end());
  const bool done = (g_serviceManager->*operation)(nullptr);
  EXPECT_TRUE(person.steps.empty()) << person.steps.size() << " steps were not played";
  person.steps.clear();
  return done;
}

Credentials AccountTest::InForce() {
  Credentials seen;
  const Step look = [&](HWND dialog) { seen = {TextOf(dialog, IDC_USER_ID), TextOf(dialog, IDC_PASSWORD)}; };
  Run({look, Clicks(IDCANCEL)}, &CVServiceManager::Login);
  return seen;
}

}  // namespace nvsupport::testing
