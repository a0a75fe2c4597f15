// The account dialogs by themselves: how they open, what goes to the service, what the user is told about each reply,
// their web pages.
#include "account_fixture.h"

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <optional>
#include <thread>

namespace nvsupport {
namespace {

using namespace testing;
using namespace std::string_literals;

class AccountDialogs : public AccountTest {};

constexpr Operation signIn = &CVServiceManager::Login;
constexpr Operation create = &CVServiceManager::CreateAccount;
constexpr Operation nameComputer = &CVServiceManager::SetDeviceName;

TEST_F(AccountDialogs, OpensWithWhatIsKnown) {
  char hostName[256] = {};
  EXPECT_EQ(gethostname(hostName, sizeof hostName - 1), 0);
  const struct {
    const char* title;
    Operation operation;
    Credentials saved;
    std::vector<std::pair<int, std::string>> fields;
    int focus;
  } cases[] = {
      {signInTitle, signIn, {"", ""}, {{IDC_USER_ID, ""}, {IDC_PASSWORD, ""}}, IDC_USER_ID},
      {signInTitle, signIn, {"ann", "Secret 1"}, {{IDC_USER_ID, "ann"}, {IDC_PASSWORD, "secret1"}}, IDC_PASSWORD},
      {signInTitle, signIn, {"", "secret1"}, {{IDC_USER_ID, ""}, {IDC_PASSWORD, ""}}, IDC_USER_ID},
      {createTitle, create, {"ann", "secret1"}, {{IDC_USER_ID, "ann"}, {IDC_PASSWORD, "secret1"}}, IDC_USER_ID},
      {deviceTitle, nameComputer, {"ann", ""}, {{IDC_COMPUTER_NAME, hostName}}, IDC_COMPUTER_NAME},
  };
  for (const auto& row : cases) {
    OpenSession(row.saved);
    const Step look = Sees(row.title, [&](HWND dialog) {
      for (const auto& [id, text] : row.fields) EXPECT_EQ(TextOf(dialog, id), text) << row.title << ' ' << id;
      EXPECT_EQ(person.selectedWhole, GetDlgItem(dialog, row.focus)) << row.title;
    });
    EXPECT_FALSE(Run({look, Clicks(IDCANCEL)}, row.operation));
  }
}

TEST_F(AccountDialogs, OpensItsWebPagesAndStays) {
  const std::string opened = home.folder / "opened";
  WriteWholeFile(home.folder / "bin/xdg-open", "#!/bin/sh\necho \"$1\" >> '" + opened + "'\n");
  ASSERT_EQ(chmod((home.folder / "bin/xdg-open").c_str(), 0700), 0);
  const ScopedVariable path("PATH", home.folder / "bin:" + std::getenv("PATH"));
  const std::string help = "http://" NV_SERVICE_HOST "/WebHelp/account_management.htm";
  const struct {
    const char* title;
    Operation operation;
    int button;
    std::string page;
    int notifies;  // without being clicked
  } cases[] = {
      {signInTitle, signIn, IDC_FORGOT, "https://" NV_SERVICE_HOST "/forgot.htm", IDC_HELP_PAGE},
      {signInTitle, signIn, IDC_HELP_PAGE, help, IDC_FORGOT},
      {createTitle, create, IDC_VIEW_POLICY, "http://" NV_WEB_HOST "/privacy.htm", IDC_HELP_PAGE},
      {createTitle, create, IDC_HELP_PAGE, help, IDC_VIEW_POLICY},
      {deviceTitle, nameComputer, IDC_HELP_PAGE, help, IDC_COMPUTER_NAME},
  };
  OpenSession();
  std::string expected;
  for (const auto& row : cases) {
    const Step notify = [&](HWND dialog) {
      SendMessageA(dialog, WM_COMMAND, 0x0001'0000u | static_cast<WPARAM>(row.notifies), 0);
    };
    EXPECT_FALSE(Run({notify, Clicks(row.button), Sees(row.title), Clicks(IDCANCEL)}, row.operation));
    expected += row.page + '\n';
    while (ReadWholeFile(opened).size() < expected.size()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(ReadWholeFile(opened), expected);
  }
}

TEST_F(AccountDialogs, CarriesTheItemsOfEachOperation) {
  Serve({Int(3), Int(0), Int(0), Int(0) + Int(1), Int(0), Int(0) + Text("t")});
  OpenSession();
  const std::string device = Int(g_serviceManager->GetDeviceId());
  const Step choosesFrench = [&](HWND) {
    home.WriteUserRegistry("[HKEY_CURRENT_USER\\Software\\Norvane]\n\"Language\"=\"Fran\u00e7ais\"\n");
  };
  const Steps name = {Sees(deviceTitle), Types(IDC_COMPUTER_NAME, "B\u00fcro"), Clicks(IDOK)};
  const Steps tryTwice = {Clicks(IDC_ACCEPT_POLICY), Clicks(IDOK), choosesFrench, Clicks(IDC_KEEP_INFORMED),
                          Clicks(IDOK)};
  EXPECT_TRUE(Run(FillAccount("J\u00f6rg 7", "Gr\u00fc\u00dfe!") + tryTwice + name, create));
  EXPECT_TRUE(Run(Steps{Clicks(IDOK)} + name, signIn));
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

TEST_F(AccountDialogs, TellsTheUserOfEachFailureAndLetsHimTryAgain) {
  const Credentials saved{"old", "oldpass"};
  const Steps filled = FillAccount("Ann!", "Secret 1");
  const Steps retyped = {Types(IDC_RETYPE_PASSWORD, "secret 1"), Clicks(IDOK),
                         Sees(createTitle, [](HWND dialog) { EXPECT_EQ(TextOf(dialog, IDC_RETYPE_PASSWORD), ""); }),
                         Types(IDC_RETYPE_PASSWORD, "secret 1")};
  const Try account{signInTitle, signIn, FillSignIn("Ann!", "Secret 1"), {"Ann!", ""}};
  const Try noUserId{signInTitle, signIn, FillSignIn("", "Secret 1"), {"", ""}};
  const Try noPassword{signInTitle, signIn, FillSignIn("Ann!", ""), {"Ann!", ""}};
  const Try newAccount{createTitle, create, filled, {"Ann!", "Secret 1"}};
  const Try mismatch{createTitle, create, filled + retyped, saved};
  const Try device{deviceTitle, nameComputer, {Types(IDC_COMPUTER_NAME, "desk")}, saved};
  constexpr UINT plain = MB_OK;
  constexpr UINT error = MB_ICONERROR;
  const struct {
    const Try& tried;
    std::optional<std::string> reply;  // nothing: there is no server
    UINT type;
    const char* text;  // how the message begins; null: there is none
    int field = 0;     // that is selected then, to be corrected
  } failures[] = {
      {noUserId, std::nullopt, MB_ICONINFORMATION, "You must provide a user name and password to access your account.",
       IDC_USER_ID},
      {noPassword, std::nullopt, MB_ICONINFORMATION, "You must provide a user name and password", IDC_PASSWORD},
      {account, std::nullopt, plain, exchangeFailed},
      {account, Int(0), plain, exchangeFailed},
      {account, Int(0) + Int(2), plain, exchangeFailed},
      {account, Int(4), plain, "The User ID is not correct. If you have lost your ID, click the \"I Forgot\"",
       IDC_USER_ID},
      {account, Int(5), plain, "The Password is not correct. If you have lost your password, click", IDC_PASSWORD},
      {mismatch, std::nullopt, error, "The passwords do not match", IDC_RETYPE_PASSWORD},
      {newAccount, std::nullopt, error, "Problem communicating over the internet"},
      {newAccount, "", error, "Internal server error"},
      {newAccount, Int(2), error, "This user name is already in use.\nIf this is your account and you have forgotten",
       IDC_USER_ID},
      {newAccount, Int(3), error, "The password must be at least 6 letters or numbers", IDC_PASSWORD},
      {newAccount, Int(13), error, "An account already exists with the same email address. Please sign in"},
      {newAccount, Int(14), error, "You must provide a valid email address.", IDC_EMAIL},
      {newAccount, Int(-70000), error, "The server returned error code -70000"},
      {device, std::nullopt, plain, "Unable to contact the server."},
      {device, "", plain, nullptr},
      {device, Int(4), plain, "The User ID is not correct"},
      {device, Int(5), plain, "The Password is not correct"},
      {device, Int(99), plain, exchangeFailed},
  };
  for (const auto& [tried, reply, type, text, field] : failures) {
    SCOPED_TRACE(std::string(tried.title) + ": " + (text != nullptr ? text : "no message"));
    server.reset();
    if (reply) Serve({*reply});
    OpenSession(saved);
    const std::string before = Profile();
    // A known address alone leads out of the dialog.
    const bool stays = reply != Int(13);
    const Step again = Sees(tried.title, [this, corrected = field](HWND dialog) {
      EXPECT_EQ(person.selectedWhole, GetDlgItem(dialog, corrected));
    });
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

TEST_F(AccountDialogs, NeverReachesAServerWhoseCertificateDoesNotHold) {
  const std::pair<const char*, TlsIdentity> cases[] = {
      {"wrong host", authority.Issue("other.example")},
      {"unknown authority", TestAuthority().Issue(NV_SERVICE_HOST)},
  };
  for (const auto& [what, shown] : cases) {
    const ScriptedServer service(HttpReply(200, Int(0) + Int(0)), NV_SERVICE_HOST, shown);
    OpenSession({"ann", "secret1"});
    EXPECT_FALSE(Run({Clicks(IDOK), Clicks(IDCANCEL)}, signIn)) << what;
    EXPECT_EQ(service.Connections(), 1) << what;
    EXPECT_TRUE(service.Requests().empty()) << what;
    EXPECT_EQ(person.boxes.size(), 1u) << what;
  }
}

}  // namespace
}  // namespace nvsupport
