// The account dialogs by themselves: how they open, what the sign-in saves, their web pages.
#include "account_fixture.h"

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <thread>

namespace nvsupport {
namespace {

using namespace testing;

class AccountDialog : public AccountTest {};

constexpr Operation signIn = &CVServiceManager::Login;
constexpr Operation create = &CVServiceManager::CreateAccount;
constexpr Operation nameComputer = &CVServiceManager::SetDeviceName;

TEST_F(AccountDialog, OpensWithWhatIsKnown) {
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
      {createTitle,
       create,
       {"ann", "secret1"},
       {{IDC_USER_ID, "ann"}, {IDC_PASSWORD, "secret1"}, {IDC_RETYPE_PASSWORD, ""}},
       IDC_USER_ID},
      {deviceTitle, nameComputer, {"ann", ""}, {{IDC_COMPUTER_NAME, hostName}}, IDC_COMPUTER_NAME},
  };
  for (const auto& row : cases) {
    OpenSession(row.saved);
    const Step look = Sees(row.title, [&](HWND dialog) {
      for (const auto& [id, text] : row.fields) EXPECT_EQ(TextOf(dialog, id), text) << row.title << ' ' << id;
      EXPECT_EQ(PlayedUser::FocusedControl(dialog), GetDlgItem(dialog, row.focus)) << row.title;
      EXPECT_EQ(person.selectedWhole, GetDlgItem(dialog, row.focus)) << row.title;
    });
    EXPECT_FALSE(Run({look, Clicks(IDCANCEL)}, row.operation));
  }
}

TEST_F(AccountDialog, OpensItsWebPagesAndStays) {
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

}  // namespace
}  // namespace nvsupport
