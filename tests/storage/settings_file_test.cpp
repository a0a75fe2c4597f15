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
  const std::pair<std::string, const char*> cases[] = {
      {"# nothing\n \t\n\r\n \t#c=1\n[section]\n", ""},
      {"a=b#c", "a=b%23c\n"},
      {"a=1&b=2\nc&d=2", "a=1\nb=2\nd=2\n"},
      {"=x&a=2", "a=2\n"},
      {"a=old\na=&b=2", "a=old\nb=2\n"},
      {"a=1&\nb=2", "a=1\nb=2\n"},
      {"a=2\na=3\nA=1", "A=1\na=3\n"},
      {"a=b=c", "a=b%3dc\n"},
      {"a=100%", "a=100\n"},
      {"a=old\na=%4", ""},
      {"a=50%zz", "a=50%25zz\n"},
      {"a=%%41", "a=%25%2541\n"},
      {"a=%41%42", "a=AB\n"},
      {"a=%e9&b=%E9", "a=%e9\nb=%e9\n"},
      {"a=%00b", "a=%00b\n"},
      {"a=1\r\nb=\r2\0x"s, "a=1\nb=2x\n"},
      {" \ta\t = \t x y \t& b =2 ", "a=x+y\nb=2\n"},
      {"a+b=c+d&e%41=f", "a+b=c+d\ne%41=f\n"},
  };
  for (const auto& [lines, saved] : cases) EXPECT_EQ(SavedBytes(Loaded(lines)), saved) << "from " << lines;
  EXPECT_EQ(Loaded("a=old\na=%4").GetText("a", "absent"), "");
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
