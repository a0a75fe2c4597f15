// The account dialogs by themselves: how they open, what they refuse without asking the service, their web pages.
#include "account_fixture.h"

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <thread>

namespace nvsupport {
namespace {

using namespace testing;

class AccountDialog : public AccountTest {};

TEST_F(AccountDialog, OfTheSignInOpensWithWhatIsKnown) {
  const struct {
    std::string profile;
    Credentials shown;
    int focus;
  } cases[] = {
      {"", {"", ""}, IDC_USER_ID},
      {ProfileOf("ann"), {"ann", ""}, IDC_PASSWORD},
      {ProfileOf("ann", "Secret 1"), {"ann", "secret1"}, IDC_PASSWORD},
      {ProfileOf("", "Secret 1"), {"", ""}, IDC_USER_ID},
  };
  for (const auto& row : cases) {
    OpenSession(row.profile);
    const Step look = Sees(signInTitle, [&](HWND dialog) {
      EXPECT_EQ((Credentials{TextOf(dialog, IDC_USER_ID), TextOf(dialog, IDC_PASSWORD)}), row.shown);
      EXPECT_EQ(user::FocusedControl(dialog), GetDlgItem(dialog, row.focus));
      EXPECT_EQ(user::Record().selectedWhole, GetDlgItem(dialog, row.focus));
      EXPECT_EQ(user::CheckStateShown(GetDlgItem(dialog, IDC_SAVE_PASSWORD)), 0);
    });
    EXPECT_FALSE(Run({look, Clicks(IDCANCEL)}, &CVServiceManager::Login));
  }
}

TEST_F(AccountDialog, OfTheSignInSavesWhatIsTicked) {
  Serve({Items(Int(0) + Int(0))});
  for (const bool ticked : {true, false}) {
    OpenSession(ProfileOf("old", "oldpass"));
    Steps steps = FillSignIn("Ann 1", "Secret-1");
    if (ticked) steps.push_back(Clicks(IDC_SAVE_PASSWORD));
    EXPECT_TRUE(Run(steps + Steps{Clicks(IDOK)}, &CVServiceManager::Login));
    EXPECT_EQ(InForce(), (Credentials{"Ann 1", "Secret-1"}));
    const std::string saved = Profile();
    EXPECT_NE(saved.find("UserID="), std::string::npos);
    EXPECT_EQ(saved.find("Passwd=") != std::string::npos, ticked);
    OpenSession(saved);
    EXPECT_EQ(InForce(), (Credentials{"Ann 1", ticked ? "secret1" : ""}));
  }
}

TEST_F(AccountDialog, OfTheSignInAsksForBothTextsBeforeItAsksTheService) {
  Serve({Items(Int(0) + Int(0))});
  for (const auto& [name, password] : {Credentials{"", "secret1"}, Credentials{"ann", ""}}) {
    OpenSession();
    person.boxes.clear();
    EXPECT_FALSE(Run(FillSignIn(name, password) + Steps{Clicks(IDOK), Sees(signInTitle), Clicks(IDCANCEL)},
                     &CVServiceManager::Login));
    ASSERT_EQ(person.boxes.size(), 1u);
    EXPECT_EQ(person.boxes[0].text, "You must provide a user name and password to access your account.");
    EXPECT_EQ(person.boxes[0].type, MB_ICONINFORMATION);
    EXPECT_EQ(person.boxOwners[0], signInTitle);
  }
  EXPECT_EQ(server->Connections(), 0);
}

TEST_F(AccountDialog, OfANewAccountComparesThePasswordsByteForByte) {
  Serve({Items(Int(0))});
  OpenSession(ProfileOf("old", "oldpass"));
  const Step opened = Sees(createTitle, [](HWND dialog) {
    EXPECT_EQ(TextOf(dialog, IDC_USER_ID), "old");
    EXPECT_EQ(TextOf(dialog, IDC_PASSWORD), "oldpass");
    EXPECT_EQ(TextOf(dialog, IDC_RETYPE_PASSWORD), "");
    EXPECT_EQ(user::FocusedControl(dialog), GetDlgItem(dialog, IDC_USER_ID));
    EXPECT_EQ(user::CheckStateShown(GetDlgItem(dialog, IDC_KEEP_INFORMED)), 0);
  });
  const Step refused = Sees(createTitle, [](HWND dialog) {
    EXPECT_EQ(TextOf(dialog, IDC_PASSWORD), "secret1");
    EXPECT_EQ(TextOf(dialog, IDC_RETYPE_PASSWORD), "");
  });
  EXPECT_FALSE(Run(Steps{opened} + FillAccount("ann", "secret1") +
                       Steps{Types(IDC_RETYPE_PASSWORD, "Secret1"), Clicks(IDOK), refused, Clicks(IDCANCEL)},
                   &CVServiceManager::CreateAccount));
  ASSERT_EQ(person.boxes.size(), 1u);
  EXPECT_EQ(person.boxes[0].text, "The passwords do not match");
  EXPECT_EQ(person.boxes[0].type, MB_ICONERROR);
  EXPECT_EQ(person.boxOwners[0], createTitle);
  EXPECT_EQ(server->Connections(), 0);
  EXPECT_EQ(InForce(), (Credentials{"old", "oldpass"}));
}

TEST_F(AccountDialog, OfTheComputersNameProposesItsOwn) {
  char own[257] = {};
  ASSERT_EQ(gethostname(own, sizeof own - 1), 0);
  Serve({Items(Int(0))});
  OpenSession();
  const Step look = Sees(deviceTitle, [&](HWND dialog) { EXPECT_EQ(TextOf(dialog, IDC_COMPUTER_NAME), own); });
  EXPECT_TRUE(Run({look, Clicks(IDOK)}, &CVServiceManager::SetDeviceName));
  EXPECT_TRUE(Run({Types(IDC_COMPUTER_NAME, ""), Clicks(IDOK)}, &CVServiceManager::SetDeviceName));
  ASSERT_EQ(Bodies().size(), 2u);
  EXPECT_TRUE(Bodies()[0].starts_with(Int(9) + Int(0) + Int(0) + Text(own)));
  EXPECT_TRUE(Bodies()[1].starts_with(Int(9) + Int(0) + Int(0) + Int(0)));
}

TEST_F(AccountDialog, OpensItsWebPagesAndStays) {
  const std::string opened = home.folder / "opened";
  WriteWholeFile(home.folder / "bin/xdg-open", "#!/bin/sh\necho \"$1\" >> '" + opened + "'\n");
  ASSERT_EQ(chmod((home.folder / "bin/xdg-open").c_str(), 0700), 0);
  const char* const former = std::getenv("PATH");
  const ScopedVariable path("PATH", home.folder / "bin:" + (former != nullptr ? former : ""));
  const std::string help = "http://" NV_SERVICE_HOST "/WebHelp/account_management.htm";
  const struct {
    const char* title;
    bool (CVServiceManager::*operation)(HWND);
    int button;
    std::string page;
  } cases[] = {
      {signInTitle, &CVServiceManager::Login, IDC_FORGOT, "https://" NV_SERVICE_HOST "/forgot.htm"},
      {signInTitle, &CVServiceManager::Login, IDC_HELP_PAGE, help},
      {createTitle, &CVServiceManager::CreateAccount, IDC_VIEW_POLICY, "http://" NV_WEB_HOST "/privacy.htm"},
      {createTitle, &CVServiceManager::CreateAccount, IDC_HELP_PAGE, help},
      {deviceTitle, &CVServiceManager::SetDeviceName, IDC_HELP_PAGE, help},
  };
  OpenSession();
  std::string expected;
  for (const auto& row : cases) {
    const Step notify = [&](HWND dialog) {  // any notification but a click
      SendMessageA(dialog, WM_COMMAND, 0x0001'0000u | static_cast<WPARAM>(row.button), 0);
    };
    EXPECT_FALSE(Run({notify, Clicks(row.button), Sees(row.title), Clicks(IDCANCEL)}, row.operation));
    expected += row.page + '\n';
    for (int wait = 0; wait < 1000 && ReadWholeFile(opened).size() < expected.size(); ++wait) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(ReadWholeFile(opened), expected);
  }
}

}  // namespace
}  // namespace nvsupport
