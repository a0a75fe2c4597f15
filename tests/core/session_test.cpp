// The session and what it saves: the profile of a product, the password's form on disk, the device identifier.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "account/service_manager.h"
#include "nvsupport/nvsupport.h"
#include "support/run_program.h"
#include "support/temporary_home.h"

namespace nvsupport {
namespace {

using testing::ReadWholeFile;
using testing::WriteWholeFile;
namespace fs = std::filesystem;

// A session whose fields a test sets as the account dialogs do.
class ProbeSession final : public CVServiceManager {
 public:
  explicit ProbeSession(const std::string& product) : CVServiceManager(product, 1, 2) {}
  std::string GetDeviceName() override { return "probe"; }
  using CVServiceManager::m_password;
  using CVServiceManager::m_savePassword;
  using CVServiceManager::m_userId;
};

class Session : public ::testing::Test {
 protected:
  static void SaveAs(const std::string& product, const std::string& userId, const std::string& password) {
    ProbeSession session(product);
    session.m_userId = userId;
    session.m_password = password;
    session.m_savePassword = true;
    session.SaveProfile();
  }
  std::string SettingsOf(const std::string& product) const {
    return home.folder / ("data/" + product + "-Service/settings.ini");
  }

  testing::TemporaryHome home;
};

TEST_F(Session, KeepsTheFirstSixteenLettersAndDigitsOfAPassword) {
  const std::pair<const char*, const char*> cases[] = {
      {"Pass-Word 12!", "password12"},
      {"abcdefghijklmnopqrst", "abcdefghijklmnop"},
      {"a b c d e f g h 0.1.2.3.4.5.6.7.8.9", "abcdefgh01234567"},
      {"z?! \u00e9", "z"},
  };
  for (const auto& [typed, kept] : cases) {
    SaveAs("Sea Charts", "Ann B. & c=d", typed);
    const ProbeSession next("Sea Charts");
    EXPECT_EQ(next.m_userId, "Ann B. & c=d");
    EXPECT_EQ(next.m_password, kept);
    EXPECT_FALSE(next.m_savePassword);
    EXPECT_EQ(ProbeSession("Land Maps").m_password, "") << typed;
  }
}

TEST_F(Session, KeepsTheSavedPasswordOutOfSight) {
  SaveAs("P", "ann", "secret99");
  const std::string settings = SettingsOf("P");
  EXPECT_EQ(fs::status(settings).permissions(), fs::perms(0600));
  // Another mask would lose the passwords that are saved already.
  EXPECT_EQ(ReadWholeFile(settings), "Passwd=af510ac58c72fb3049c61de097247ba8\nUserID=ann\n");
  // Saving replaces the whole file; the password is not saved unless the user says so again.
  WriteWholeFile(settings, ReadWholeFile(settings) + "byhand=1\n");
  ProbeSession("P").SaveProfile();
  EXPECT_EQ(ReadWholeFile(settings), "UserID=ann\n");
}

TEST_F(Session, ReadsAnOddPasswordAsFarAsItGoes) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},      {"b", ""}, {"b952", "ab"}, {"b9520ad", "abc"}, {"b9520ad9836cf13a49c61de097247ba80011", "abc"},
      {"9752", "b"},  // behind a code that is none
  };
  for (const auto& [value, password] : cases) {
    WriteWholeFile(SettingsOf("P"), std::string("UserID=u\nPasswd=") + value + "\n");
    EXPECT_EQ(ProbeSession("P").m_password, password) << value;
  }
}

TEST_F(Session, ExportsAnswerBeforeDuringAndAfterASession) {
  CloseSession();
  EXPECT_STREQ(x0d83f18d(), "");
  EXPECT_EQ(x2ed7465a(), 0u);

  SaveAs("A b", "ann", "");
  x3e491215("A b");
  EXPECT_STREQ(x0d83f18d(), "ann");
  // The same on every run and for every product.
  const testing::ProgramResult run = testing::RunProgram({NV_HOST, "whoami", "--product", "Another"});
  EXPECT_NE(run.output.find("device identifier  " + std::to_string(x2ed7465a()) + "\n"), std::string::npos)
      << run.output;

  const std::string before = ReadWholeFile(SettingsOf("A b"));
  x3e491215("First run");
  EXPECT_STREQ(x0d83f18d(), "");
  EXPECT_FALSE(fs::exists(SettingsOf("First run")));
  EXPECT_EQ(ReadWholeFile(SettingsOf("A b")), before);
}

TEST_F(Session, OfADataFolderWithoutANameIsNotSavedInTheRootFolder) {
  const testing::ScopedVariable tooLong("XDG_DATA_HOME", "/" + std::string(300, 'x'));
  SaveAs("Atlas", "ann", "");
  EXPECT_FALSE(fs::remove("/settings.ini")) << "that is where it would stand, for who may write there";
}

}  // namespace
}  // namespace nvsupport
