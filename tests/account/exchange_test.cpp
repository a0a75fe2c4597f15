// The exchanges behind the dialogs: what goes to the service, and what the user is told about each reply.
#include "account_fixture.h"

#include <optional>

namespace nvsupport {
namespace {

using namespace testing;
using namespace std::string_literals;

class AccountExchange : public AccountTest {};

TEST_F(AccountExchange, CarriesTheItemsOfEachOperation) {
  Serve({Int(3), Int(0), Int(0), Int(0) + Int(1), Int(0), Int(0) + Text("t")});
  OpenSession();
  const std::string device = Int(g_serviceManager->GetDeviceId());
  const Step choosesFrench = [&](HWND) {
    home.WriteUserRegistry("[HKEY_CURRENT_USER\\Software\\Norvane]\n\"Language\"=\"Fran\u00e7ais\"\n");
  };
  const Steps name = {Sees(deviceTitle), Types(IDC_COMPUTER_NAME, "B\u00fcro"), Clicks(IDOK)};
  const Steps tryTwice = {Clicks(IDC_ACCEPT_POLICY), Clicks(IDOK), choosesFrench, Clicks(IDC_KEEP_INFORMED),
                          Clicks(IDOK)};
  EXPECT_TRUE(Run(FillAccount("J\u00f6rg 7", "Gr\u00fc\u00dfe!") + tryTwice + name, &CVServiceManager::CreateAccount));
  EXPECT_TRUE(Run(Steps{Clicks(IDOK)} + name, &CVServiceManager::Login));
  EXPECT_EQ(g_serviceManager->GetSessionToken(nullptr), "t");

  const std::string jorg = "\x07\0\0\0J\0\xC3\xFF\xB6\xFFr\0g\0 \0007\0"s + Text("Gr\u00fc\u00dfe!");
  const std::string details = Text("Ann") + Int(0) + Text("ann@host.example");
  const std::string named = "\x09\0\0\0"s + jorg + Text("B\u00fcro") + device + "\x7C\0\0\0\0\0\0\x10"s;
  EXPECT_EQ(Requests(), (std::vector<std::string>{
                            "\x0A\0\0\0"s + jorg + details + "\0\x7C\0\0\0"s + Text("English"),
                            "\x0A\0\0\0"s + jorg + details + "\x01\x7C\0\0\0"s + Text("Fran\u00e7ais"),
                            named,
                            "\x08\0\0\0"s + jorg + device,
                            named,
                            "\x0B\0\0\0"s + jorg,
                        }));
  for (const std::string& request : server->Requests()) {
    EXPECT_TRUE(request.starts_with("POST /cgi-bin/svcapp.cgi HTTP/1.1\r\nHost: " NV_SERVICE_HOST "\r\n")) << request;
  }
}

// A try that fails, as the user lives through it.
struct Try {
  const char* title;
  Operation operation;
  Steps fill;
  Credentials left;  // what is in force afterwards
};

TEST_F(AccountExchange, TellsTheUserOfEachFailureAndLetsHimTryAgain) {
  constexpr Operation login = &CVServiceManager::Login;
  const Credentials saved{"old", "oldpass"};
  const Steps account = FillAccount("Ann!", "Secret 1");
  const Steps retyped = {Types(IDC_RETYPE_PASSWORD, "secret 1"), Clicks(IDOK),
                         Sees(createTitle, [](HWND dialog) { EXPECT_EQ(TextOf(dialog, IDC_RETYPE_PASSWORD), ""); }),
                         Types(IDC_RETYPE_PASSWORD, "secret 1")};
  const Try signIn{signInTitle, login, FillSignIn("Ann!", "Secret 1"), {"Ann!", ""}};
  const Try noUserId{signInTitle, login, FillSignIn("", "Secret 1"), {"", ""}};
  const Try noPassword{signInTitle, login, FillSignIn("Ann!", ""), {"Ann!", ""}};
  const Try create{createTitle, &CVServiceManager::CreateAccount, account, {"Ann!", "Secret 1"}};
  const Try mismatch{createTitle, &CVServiceManager::CreateAccount, account + retyped, saved};
  const Try device{deviceTitle, &CVServiceManager::SetDeviceName, {Types(IDC_COMPUTER_NAME, "desk")}, saved};
  constexpr UINT plain = MB_OK;
  constexpr UINT error = MB_ICONERROR;
  const struct {
    const Try& tried;
    std::optional<std::string> reply;  // nothing: there is no server
    UINT type;
    const char* text;  // how the message begins; null: there is none
  } failures[] = {
      {noUserId, std::nullopt, MB_ICONINFORMATION, "You must provide a user name and password to access your account."},
      {noPassword, std::nullopt, MB_ICONINFORMATION, "You must provide a user name and password"},
      {signIn, std::nullopt, plain, exchangeFailed},
      {signIn, Int(0), plain, exchangeFailed},
      {signIn, Int(0) + Int(2), plain, exchangeFailed},
      {signIn, Int(4), plain,
       "The User ID is not correct. If you have lost your ID, click the \"I Forgot\" button. Do"},
      {signIn, Int(5), plain, "The Password is not correct. If you have lost your password, click"},
      {mismatch, std::nullopt, error, "The passwords do not match"},
      {create, std::nullopt, error, "Problem communicating over the internet"},
      {create, "", error, "Internal server error"},
      {create, Int(2), error, "This user name is already in use.\nIf this is your account and you have forgotten"},
      {create, Int(3), error, "The password must be at least 6 letters or numbers"},
      {create, Int(13), error,
       "An account already exists with the same email address. Please sign in to that account.\n"},
      {create, Int(14), error, "You must provide a valid email address."},
      {create, Int(-70000), error, "The server returned error code -70000"},
      {device, std::nullopt, plain, "Unable to contact the server."},
      {device, "", plain, nullptr},
      {device, Int(4), plain, "The User ID is not correct"},
      {device, Int(5), plain, "The Password is not correct"},
      {device, Int(99), plain, exchangeFailed},
  };
  for (const auto& [tried, reply, type, text] : failures) {
    SCOPED_TRACE(std::string(tried.title) + ": " + (text != nullptr ? text : "no message"));
    server.reset();
    if (reply) Serve({*reply});
    OpenSession(saved);
    const std::string before = Profile();
    // A known address alone leads out of the dialog.
    const bool stays = reply != Int(13);
    const Step again = Sees(tried.title);
    const Steps tryTwice = {Clicks(IDOK), again, Clicks(IDOK), again, Clicks(IDCANCEL)};
    EXPECT_FALSE(Run(tried.fill + (stays ? tryTwice : Steps{Clicks(IDOK)}), tried.operation));

    EXPECT_EQ(person.boxes.empty(), text == nullptr);
    for (std::size_t i = 0; i < person.boxes.size(); ++i) {
      EXPECT_TRUE(person.boxes[i].text.starts_with(text)) << person.boxes[i].text;
      EXPECT_EQ(person.boxes[i].caption, "Account Manager");
      EXPECT_EQ(person.boxes[i].type, type);
      EXPECT_EQ(person.boxOwners[i], tried.title);
    }
    if (reply && stays) {
      EXPECT_EQ(Requests(), std::vector<std::string>(2, Requests().front())) << "the edits keep what was typed";
    }
    EXPECT_EQ(Profile(), before);
    EXPECT_EQ(InForce(), tried.left);
  }
}

TEST_F(AccountExchange, NeverReachesAServerWhoseCertificateDoesNotHold) {
  const std::pair<const char*, TlsIdentity> cases[] = {
      {"expired", authority.Issue(NV_SERVICE_HOST, -2L * 24 * 60 * 60)},
      {"wrong host", authority.Issue("other.example")},
      {"unknown authority", TestAuthority().Issue(NV_SERVICE_HOST)},
  };
  for (const auto& [what, shown] : cases) {
    const ScriptedServer service(HttpReply(200, Int(0) + Int(0)), NV_SERVICE_HOST, shown);
    OpenSession({"ann", "secret1"});
    EXPECT_FALSE(Run({Clicks(IDOK), Clicks(IDCANCEL)}, &CVServiceManager::Login)) << what;
    EXPECT_EQ(service.Connections(), 1) << what;
    EXPECT_TRUE(service.Requests().empty()) << what;
    EXPECT_EQ(person.boxes.size(), 1u) << what;
  }
}

}  // namespace
}  // namespace nvsupport
