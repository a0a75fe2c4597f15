// The exchanges behind the dialogs: what goes to the service, and what the user is told about each reply.
#include "account_fixture.h"

#include <chrono>
#include <optional>
#include <thread>

namespace nvsupport {
namespace {

using namespace testing;
using namespace std::string_literals;

class AccountExchange : public AccountTest {};

TEST_F(AccountExchange, CarriesTheItemsOfEachOperation) {
  home.WriteUserRegistry(
      "[HKEY_CURRENT_USER\\Software\\Norvane]\n\"Language\"=\"Fran\xC3\xA7"
      "ais\"\n");
  Serve({Items(Int(0)), Items(Int(0)), Items(Int(0) + Int(1)), Items(Int(0)), Items(Int(0) + Text("t"))});
  OpenSession();
  const std::string device = Int(static_cast<std::int32_t>(g_serviceManager->GetDeviceId()));
  const Steps name = {Sees(deviceTitle), Types(IDC_COMPUTER_NAME, "B\xC3\xBCro"), Clicks(IDOK)};
  EXPECT_TRUE(Run(FillAccount("J\xC3\xB6rg 7",
                              "Gr\xC3\xBC\xC3\x9F"
                              "e!") +
                      Steps{Clicks(IDC_KEEP_INFORMED), Clicks(IDC_ACCEPT_POLICY), Clicks(IDOK)} + name,
                  &CVServiceManager::CreateAccount));
  EXPECT_TRUE(Run(Steps{Clicks(IDOK)} + name, &CVServiceManager::Login));
  EXPECT_EQ(g_serviceManager->GetSessionToken(nullptr), "t");

  const std::string jorg = "\x07\0\0\0J\0\xC3\xFF\xB6\xFFr\0g\0 \0007\0"s;
  const std::string password = Text(
      "Gr\xC3\xBC\xC3\x9F"
      "e!");
  const std::string named = Int(9) + jorg + password + Text("B\xC3\xBCro") + device + Int(124) + "\0\0\0\x10"s;
  const std::vector<std::string> expected = {
      Int(10) + jorg + password + Text("Ann") + Int(0) + Text("ann@host.example") + '\x01' + "\x7C\0\0\0"s +
          Text("Fran\xC3\xA7"
               "ais"),
      named,
      "\x08\0\0\0"s + jorg + password + device,
      named,
      Int(11) + jorg + password,
  };
  EXPECT_EQ(Bodies(), expected);
  for (const std::string& request : server->Requests()) {
    EXPECT_TRUE(request.starts_with("POST /cgi-bin/svcapp.cgi HTTP/1.1\r\nHost: " NV_SERVICE_HOST "\r\n")) << request;
    EXPECT_NE(request.find("\r\nUser-Agent: NV_CgiClient\r\n"), std::string::npos);
  }
}

TEST_F(AccountExchange, SendsEnglishAndAZeroByteUnlessTheUserChoseOtherwise) {
  Serve({Items(Int(3))});
  OpenSession();
  Run(FillAccount("ann", "") + Steps{Clicks(IDOK), Clicks(IDC_KEEP_INFORMED), Clicks(IDOK), Clicks(IDCANCEL)},
      &CVServiceManager::CreateAccount);
  const std::string begin = Int(10) + Text("ann") + Text("") + Text("Ann") + Text("") + Text("ann@host.example");
  const std::string end = Int(124) + Text("English");
  EXPECT_EQ(Bodies(), (std::vector<std::string>{begin + '\0' + end, begin + '\x01' + end}));
}

// A try that fails, as the user lives through it in each of the three dialogs.
struct Tried {
  const char* title;
  bool (CVServiceManager::*operation)(HWND);
  Steps fill;
  Credentials left;  // what is in force afterwards
};

struct Failure {
  const Tried* tried;
  std::optional<Reply> reply;  // nothing: there is no server
  const char* text;            // null: no message
  UINT type;
};

TEST_F(AccountExchange, TellsTheUserOfEachFailureAndLetsHimTryAgain) {
  const Credentials saved{"old", "oldpass"};
  const Tried signIn{signInTitle, &CVServiceManager::Login, FillSignIn("Ann!", "Secret 1"), {"Ann!", ""}};
  const Tried create{
      createTitle, &CVServiceManager::CreateAccount, FillAccount("Ann!", "Secret 1"), {"Ann!", "Secret 1"}};
  const Tried device{deviceTitle, &CVServiceManager::SetDeviceName, {Types(IDC_COMPUTER_NAME, "desk")}, saved};
  const char* const exchangeFailed = "A problem occured communicating with the server";
  const Failure failures[] = {
      {&signIn, std::nullopt, exchangeFailed, MB_OK},
      {&signIn, Reply{}, exchangeFailed, MB_OK},
      {&signIn, Items(""), exchangeFailed, MB_OK},
      {&signIn, Items(Int(0)), exchangeFailed, MB_OK},
      {&signIn, Items(Int(0) + Int(2)), exchangeFailed, MB_OK},
      {&signIn, Items(Int(7)), exchangeFailed, MB_OK},
      {&signIn, HttpReply(404, "<html>not here</html>"), exchangeFailed, MB_OK},
      {&signIn, Items(Int(4)),
       "The User ID is not correct. If you have lost your ID, click the \"I Forgot\" button. Do not create more than "
       "one account.",
       MB_OK},
      {&signIn, Items(Int(5)),
       "The Password is not correct. If you have lost your password, click the \"I Forgot\" button.", MB_OK},
      {&create, std::nullopt, "Problem communicating over the internet", MB_ICONERROR},
      {&create, Items(""), "Internal server error", MB_ICONERROR},
      {&create, Items(Int(2)),
       "This user name is already in use.\nIf this is your account and you have forgotten the User ID or Password, "
       "click \"Cancel\" and \"I Forgot\" to recover them.",
       MB_ICONERROR},
      {&create, Items(Int(3)), "The password must be at least 6 letters or numbers", MB_ICONERROR},
      {&create, Items(Int(14)), "You must provide a valid email address.", MB_ICONERROR},
      {&create, Items(Int(1)), "The server returned error code 1", MB_ICONERROR},
      {&create, Items(Int(-70000)), "The server returned error code -70000", MB_ICONERROR},
      {&device, std::nullopt, "Unable to contact the server.", MB_OK},
      {&device, Items(""), nullptr, MB_OK},
      {&device, Items(Int(4)), "The User ID is not correct", MB_OK},
      {&device, Items(Int(5)), "The Password is not correct", MB_OK},
      {&device, Items(Int(99)), exchangeFailed, MB_OK},
  };
  for (const Failure& row : failures) {
    SCOPED_TRACE(std::string(row.tried->title) + ": " + (row.text != nullptr ? row.text : "no message"));
    row.reply ? Serve({*row.reply}) : ServeNobody();
    OpenSession(ProfileOf(saved.first, saved.second));
    person.boxes.clear();
    person.boxOwners.clear();
    const Steps tryTwice = {Clicks(IDOK), Sees(row.tried->title), Clicks(IDOK), Sees(row.tried->title),
                            Clicks(IDCANCEL)};
    EXPECT_FALSE(Run(row.tried->fill + tryTwice, row.tried->operation));

    const std::size_t told = row.text != nullptr ? 2 : 0;
    ASSERT_EQ(person.boxes.size(), told);
    for (std::size_t i = 0; i < told; ++i) {
      EXPECT_EQ(person.boxes[i].text, row.text);
      EXPECT_EQ(person.boxes[i].caption, "Account Manager");
      EXPECT_EQ(person.boxes[i].type, row.type);
      EXPECT_EQ(person.boxOwners[i], row.tried->title);
    }
    if (row.reply) {
      ASSERT_EQ(Bodies().size(), 2u);
      EXPECT_EQ(Bodies()[0], Bodies()[1]) << "the edits keep what was typed";
    }
    EXPECT_EQ(Profile(), ProfileOf(saved.first, saved.second));
    EXPECT_EQ(InForce(), row.tried->left);
  }
}

TEST_F(AccountExchange, NeverReachesAServerWhoseCertificateDoesNotHold) {
  constexpr long twoDays = 2L * 24 * 60 * 60;
  const TestAuthority stranger;
  const struct {
    const char* what;
    TlsIdentity identity;
    bool trusted;
  } cases[] = {
      {"in order", authority.Issue(NV_SERVICE_HOST), true},
      {"self-signed", TestAuthority::SelfSigned(NV_SERVICE_HOST), false},
      {"expired", authority.Issue(NV_SERVICE_HOST, -twoDays), false},
      {"not yet valid", authority.Issue(NV_SERVICE_HOST, twoDays), false},
      {"wrong host", authority.Issue("other.example"), false},
      {"unknown authority", stranger.Issue(NV_SERVICE_HOST), false},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.what);
    Serve([](const std::string&) { return Items(Int(0) + Int(0)); }, row.identity);
    OpenSession();
    person.boxes.clear();
    Steps steps = FillSignIn("ann", "secret1") + Steps{Clicks(IDOK)};
    if (!row.trusted) steps.push_back(Clicks(IDCANCEL));
    EXPECT_EQ(Run(steps, &CVServiceManager::Login), row.trusted);
    EXPECT_EQ(server->Connections(), 1);
    EXPECT_EQ(server->Requests().size(), row.trusted ? 1u : 0u);
    if (row.trusted) continue;
    ASSERT_EQ(person.boxes.size(), 1u);
    EXPECT_EQ(person.boxes[0].text, "A problem occured communicating with the server");
  }
}

TEST_F(AccountExchange, ShowsTheWaitCursorWhileTheServiceTakesItsTime) {
  Serve(
      [](const std::string&) {
        std::this_thread::sleep_for(std::chrono::milliseconds(400));
        return Items(Int(0) + Int(0));
      },
      identity);
  OpenSession(ProfileOf("ann", "secret1"));
  EXPECT_TRUE(Run({Clicks(IDOK)}, &CVServiceManager::Login));
  EXPECT_EQ(user::Record().waitCursorsShown, 1);
  EXPECT_EQ(user::Record().cursorsRestored, 1);
}

}  // namespace
}  // namespace nvsupport
