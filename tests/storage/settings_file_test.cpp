// The settings file: what the reader takes, what the writer puts down, and what comes back.
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "storage/settings_file.h"
#include "support/documented_bytes.h"
#include "support/temporary_home.h"

namespace nvsupport {
namespace {

using testing::TemporaryFolder;
using testing::WriteWholeFile;
using namespace std::string_literals;

CSettingsFile Loaded(const std::string& bytes) {
  const TemporaryFolder folder;
  WriteWholeFile(folder / "settings.ini", bytes);
  CSettingsFile settings;
  EXPECT_TRUE(settings.Load(folder / "settings.ini"));
  return settings;
}

std::string SavedBytes(const CSettingsFile& settings) {
  const TemporaryFolder folder;
  EXPECT_TRUE(settings.Save(folder / "settings.ini"));
  return testing::ReadWholeFile(folder / "settings.ini");
}

TEST(SettingsFile, ReadsLinesAsTheGrammarSays) {
  // What a save writes tells all the entries that were read.
  const CSettingsFile settings = Loaded(
      "# nothing\n \t\n\r\n \t#c1=1\n[section]\nc2=a#b\nd1=1&d2=2\nd3&d4=2\n=x&d5=2\nd6=old\nd6=&d7=2\nd8=1&\n"
      "e1=b=c\ne2=100%\ne3=old\ne3=%4\ne4=50%zz\ne5=%%41\ne6=%41%42\ne7=%e9&e8=%E9\ne9=%00b\n"
      "f1=1\r\nf2=\r2\0x\n \tf3\t = \t x y \t& f4 =2 \na+b=c+d&e%41=f\nF1=1\nf5=2\nf5=3"s);
  EXPECT_EQ(SavedBytes(settings),
            "F1=1\na+b=c+d\nc2=a%23b\nd1=1\nd2=2\nd4=2\nd5=2\nd6=old\nd7=2\nd8=1\ne%41=f\n"
            "e1=b%3dc\ne2=100\ne4=50%25zz\ne5=%25%2541\ne6=AB\ne7=%e9\ne8=%e9\ne9=%00b\n"
            "f1=1\nf2=2x\nf3=x+y\nf4=2\nf5=3\n");
  EXPECT_EQ(settings.GetText("e3", "absent"), "");
}

TEST(SettingsFile, WritesTheBytesOfTheDocument) {
  CSettingsFile settings;
  settings.SetText("note", "50% \u00e9");
  settings.SetText("UserID", "a b/c&d=e");
  settings.SetText("empty", "");
  settings.SetText("", "no key");
  const std::string example = testing::DocumentedBytes(NV_SOURCE_FOLDER "/docs/settings_format.md", "settings");
  EXPECT_EQ(SavedBytes(settings), example);
  EXPECT_FALSE(settings.Save("/missing/settings.ini"));
  EXPECT_EQ(Loaded(example).GetText("UserID"), "a b/c&d=e");
  EXPECT_EQ(EncodeSettingsValue("azAZ09$-_.!*'() +%&=#~\r\n\x80\0"s), "azAZ09$-_.!*'()+%2b%25%26%3d%23%7e%0d%0a%80%00");
}

TEST(SettingsFile, LoadsUpToItsLimitInTimeThatGrowsWithTheFileAloneAndKeepsWhatItDoesNotName) {
  const TemporaryFolder folder;
  const std::string path = folder / "settings.ini";
  CSettingsFile settings;
  settings.SetText("b", "kept");
  EXPECT_FALSE(settings.Load(path));
  // Were each pair sought to the end of the line, this would run into the time limit of the test.
  WriteWholeFile(path, "a=1" + std::string((1 << 20) - 3, '&'));
  EXPECT_TRUE(settings.Load(path));
  WriteWholeFile(path, "a=2" + std::string((1 << 20) - 2, '&'));
  EXPECT_FALSE(settings.Load(path));
  EXPECT_EQ(settings.GetText("a"), "1");
  EXPECT_EQ(settings.GetText("b"), "kept");
}

TEST(SettingsFile, NumbersAreTakenInEveryForm) {
  const std::pair<const char*, std::int32_t> cases[] = {
      {"255", 255},
      {"0xff", 255},
      {"0377", 255},
      {" 255abc", 255},
      {"-1", -1},
      {"0xffffffff", -1},
      {"-2147483648", INT32_MIN},
      {"none", 0},
  };
  CSettingsFile settings;
  for (const auto& [text, number] : cases) {
    settings.SetText("n", text);
    EXPECT_EQ(settings.GetInt("n"), number) << text;
  }
  settings.SetInt("n", -2);
  EXPECT_EQ(settings.GetText("n"), "0xfffffffe");
}

}  // namespace
}  // namespace nvsupport
