// The session and what it saves: the profile of a product, the password's form on disk, the device identifier.
#include "account_fixture.h"
#include "support/run_program.h"

// Another one than that of the programs that are run here: where the machine has an id, that does not matter.
extern "C" int gethostname(char* name, std::size_t size) noexcept {
  std::snprintf(name, size, "host-of-a-test");
  return 0;
}

namespace nvsupport {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class Session : public AccountTest {
 protected:
  void SaveAs(const std::string& product, const std::string& userId, const std::string& password) {
    x3e491215(product.c_str());
    Enter({userId, password}, true);
    g_serviceManager->SaveProfile();
  }
  // What a new session of the product begins with.
  Credentials SavedOf(const std::string& product) {
    x3e491215(product.c_str());
    return InForce();
  }
  std::string SettingsOf(const std::string& product) const {
    return home.folder / ("data/" + product + "-Service/settings.ini");
  }
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
    EXPECT_EQ(SavedOf("Sea Charts"), Credentials("Ann B. & c=d", kept));
    EXPECT_EQ(SavedOf("Land Maps"), Credentials()) << typed;
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
  x3e491215("P");
  g_serviceManager->SaveProfile();
  EXPECT_EQ(ReadWholeFile(settings), "UserID=ann\n");
}

TEST_F(Session, ReadsAnOddPasswordAsFarAsItGoes) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},      {"b", ""}, {"b952", "ab"}, {"b9520ad", "abc"}, {"b9520ad9836cf13a49c61de097247ba80011", "abc"},
      {"9752", "b"},  // behind a code that is none
  };
  for (const auto& [value, password] : cases) {
    WriteWholeFile(SettingsOf("P"), std::string("UserID=u\nPasswd=") + value + "\n");
    EXPECT_EQ(SavedOf("P"), Credentials("u", password)) << value;
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
  const ProgramResult run = RunProgram({NV_HOST, "whoami", "--product", "Another"});
  const bool hasId = ReadWholeFile("/etc/machine-id").size() == 33;
  const bool isSame = run.output.find("device identifier  " + std::to_string(x2ed7465a()) + "\n") != std::string::npos;
  EXPECT_TRUE(isSame || !hasId) << run.output;

  x3e491215(nullptr);
  EXPECT_STREQ(x0d83f18d(), "") << "a session of no product";
  const std::string before = ReadWholeFile(SettingsOf("A b"));
  x3e491215("First run");
  EXPECT_STREQ(x0d83f18d(), "");
  EXPECT_FALSE(fs::exists(SettingsOf("First run")));
  EXPECT_EQ(ReadWholeFile(SettingsOf("A b")), before);

  const ScopedVariable tooLong("XDG_DATA_HOME", "/" + std::string(300, 'x'));
  SaveAs("Atlas", "ann", "");
  EXPECT_FALSE(fs::remove("/settings.ini")) << "that is where it would stand, for who may write there";
}

}  // namespace
}  // namespace nvsupport
