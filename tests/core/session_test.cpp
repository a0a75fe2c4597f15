// The session and what it saves: the profile of a product, the password's form on disk, the device identifier.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

#include "account/credentials.h"
#include "core/service_manager.h"
#include "nvsupport/nvsupport.h"
#include "storage/settings_file.h"
#include "support/run_program.h"
#include "support/temporary_home.h"

namespace nvsupport {
namespace {

using testing::ReadWholeFile;
using testing::TemporaryHome;
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

void SaveAs(const std::string& product, const std::string& userId, const std::string& password, bool savePassword) {
  ProbeSession session(product);
  session.m_userId = userId;
  session.m_password = password;
  session.m_savePassword = savePassword;
  session.SaveProfile();
}

std::string SettingsOf(const TemporaryHome& home, const std::string& product) {
  return home.folder / ("data/" + product + "-Service/settings.ini");
}

TEST(Credentials, KeepTheFirstSixteenLettersAndDigits) {
  const Credential abc = {11, 12, 13};
  for (const char* text : {"abc", "ABC", " a-b\u00e9.c!"}) EXPECT_EQ(EncodeCredential(text), abc) << text;
  EXPECT_EQ(DecodeCredential(MaskCredential({0, 1, 10, 11, 36, 37, 255, 0, 12})), "09azb");
  const std::pair<const char*, const char*> cases[] = {
      {"Pass-Word 12!", "password12"},
      {"abcdefghijklmnopqrst", "abcdefghijklmnop"},
      {"a b c d e f g h 0.1.2.3.4.5.6.7.8.9", "abcdefgh01234567"},
      {"?! \u00e9", ""},
  };
  for (const auto& [typed, kept] : cases) {
    const TemporaryHome home;
    SaveAs("P", "u", typed, true);
    EXPECT_EQ(ProbeSession("P").m_password, kept) << typed;
  }
}

TEST(Session, ReadsWhatTheOneBeforeSaved) {
  const TemporaryHome home;
  SaveAs("Sea Charts", "Ann B. & c=d", "Secret 99", true);
  const ProbeSession next("Sea Charts");
  EXPECT_EQ(next.m_userId, "Ann B. & c=d");
  EXPECT_EQ(next.m_password, "secret99");
  EXPECT_FALSE(next.m_savePassword);
  EXPECT_EQ(ProbeSession("Land Maps").m_password, "");
}

TEST(Session, KeepsTheSavedPasswordOutOfSight) {
  const TemporaryHome home;
  SaveAs("P", "ann", "secret99", true);
  const std::string settings = SettingsOf(home, "P");
  EXPECT_EQ(fs::status(settings).permissions(), fs::perms(0600));
  EXPECT_EQ(fs::status(fs::path(settings).parent_path()).permissions(), fs::perms(0700));

  CSettingsFile file;
  ASSERT_TRUE(file.Load(settings));
  const std::string digits = file.GetText("Passwd");
  EXPECT_EQ(ReadWholeFile(settings), "Passwd=" + digits + "\nUserID=ann\n");
  EXPECT_EQ(digits.size(), 32u);
  EXPECT_EQ(digits.find_first_not_of("0123456789abcdef"), std::string::npos) << digits;
  // Neither the letters nor their codes, which a file without the mask would show.
  for (const char* plain : {"736563726574", "1d0f0d1c0f1e"}) EXPECT_EQ(digits.find(plain), std::string::npos);

  // Saving replaces the whole file; the password is not saved unless the user says so again.
  WriteWholeFile(settings, ReadWholeFile(settings) + "byhand=1\n");
  ProbeSession("P").SaveProfile();
  EXPECT_EQ(ReadWholeFile(settings), "UserID=ann\n");
}

TEST(Session, ReadsAnOddPasswordAsFarAsItGoes) {
  const TemporaryHome home;
  SaveAs("P", "u", "abcd", true);
  CSettingsFile file;
  ASSERT_TRUE(file.Load(SettingsOf(home, "P")));
  // The first four codes under the mask, then the mask alone.
  const std::string digits = file.GetText("Passwd");
  const std::pair<std::string, const char*> cases[] = {
      {"", ""},         {digits.substr(0, 1), ""}, {digits.substr(0, 4), "ab"}, {digits.substr(0, 7), "abc"},
      {digits, "abcd"}, {digits + "0011", "abcd"},
  };
  for (const auto& [value, password] : cases) {
    WriteWholeFile(SettingsOf(home, "P"), "UserID=u\nPasswd=" + value + "\n");
    const ProbeSession session("P");
    EXPECT_EQ(session.m_password, password) << value;
  }
}

TEST(Session, ExportsAnswerBeforeDuringAndAfterASession) {
  const TemporaryHome home;
  CloseSession();
  EXPECT_STREQ(x0d83f18d(), "");
  EXPECT_EQ(x2ed7465a(), 0u);

  SaveAs("A b", "ann", "", false);
  x3e491215("A b");
  EXPECT_STREQ(x0d83f18d(), "ann");
  const std::uint32_t device = x2ed7465a();
  EXPECT_EQ(device, platform::GetComputerDeviceId());

  x3e491215("First run");
  EXPECT_STREQ(x0d83f18d(), "");
  EXPECT_EQ(x2ed7465a(), device);
  EXPECT_FALSE(fs::exists(SettingsOf(home, "First run")));
  EXPECT_TRUE(fs::is_directory(home.folder / "data/First run-Service"));

  const std::string before = ReadWholeFile(SettingsOf(home, "A b"));
  x3e491215("A b");
  CloseSession();
  EXPECT_EQ(ReadWholeFile(SettingsOf(home, "A b")), before);
}

TEST(DeviceId, IsTheSameOnEveryRunAndForEveryProductAndTellsNoMachineId) {
  const TemporaryHome home;
  std::string machineId = ReadWholeFile("/etc/machine-id");
  machineId.resize(std::min<std::size_t>(machineId.size(), 32));
  const std::string expected = "device identifier  " + std::to_string(platform::GetComputerDeviceId()) + "\n";
  for (const char* product : {"A", "A", "Another"}) {
    const testing::ProgramResult run = testing::RunProgram({NV_HOST, "whoami", "--product", product});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_NE(run.output.find(expected), std::string::npos) << run.output;
    if (machineId.empty()) continue;
    EXPECT_EQ(run.output.find(machineId), std::string::npos);
  }
}

}  // namespace
}  // namespace nvsupport
