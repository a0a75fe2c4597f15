// The settings file: what the reader takes, what the writer puts down, and what comes back.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <utility>

#include "storage/settings_file.h"
#include "support/documented_bytes.h"
#include "support/temporary_home.h"

namespace nvsupport {
namespace {

using testing::ReadWholeFile;
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
  return ReadWholeFile(folder / "settings.ini");
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

TEST(SettingsFile, KeepsEntriesThatTheFileDoesNotName) {
  const TemporaryFolder folder;
  WriteWholeFile(folder / "settings.ini", "b=new\n");
  CSettingsFile settings;
  settings.SetText("a", "kept");
  settings.SetText("b", "old");
  EXPECT_FALSE(settings.Load(folder / "missing.ini"));
  EXPECT_TRUE(settings.Load(folder / "settings.ini"));
  EXPECT_EQ(settings.GetText("a"), "kept");
  EXPECT_EQ(settings.GetText("b"), "new");
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
  EXPECT_EQ(EncodeSettingsValue("azAZ09$-_.!*'() +%&=#~\n\x80\0"s), "azAZ09$-_.!*'()+%2b%25%26%3d%23%7e%0a%80%00");
}

TEST(SettingsFile, EveryByteComesBack) {
  CSettingsFile written;
  std::string all;
  for (int byte = 0; byte < 256; ++byte) {
    all += static_cast<char>(byte);
    written.SetText("k" + std::to_string(byte), all.substr(static_cast<std::size_t>(byte)));
  }
  written.SetText("all", all);
  const CSettingsFile read = Loaded(SavedBytes(written));
  EXPECT_EQ(read.GetText("all"), all);
  for (std::size_t byte = 0; byte < 256; ++byte) {
    EXPECT_EQ(read.GetText("k" + std::to_string(byte)), all.substr(byte, 1)) << byte;
  }
}

TEST(SettingsFile, LoadsUpToItsLimitInTimeThatGrowsWithTheFileAlone) {
  const TemporaryFolder folder;
  const std::string path = folder / "settings.ini";
  // Were each pair sought to the end of the line, this would run into the time limit of the test.
  WriteWholeFile(path, "a=1" + std::string((1 << 20) - 3, '&'));
  CSettingsFile settings;
  EXPECT_TRUE(settings.Load(path));
  EXPECT_EQ(settings.GetText("a"), "1");
  WriteWholeFile(path, "a=2" + std::string((1 << 20) - 2, '&'));
  EXPECT_FALSE(settings.Load(path));
  EXPECT_EQ(settings.GetText("a"), "1");
}

TEST(SettingsFile, NumbersAreTakenInEveryForm) {
  CSettingsFile settings;
  const std::pair<const char*, std::int32_t> cases[] = {{"255", 255},
                                                        {"0xff", 255},
                                                        {"0377", 255},
                                                        {" 255abc", 255},
                                                        {"-1", -1},
                                                        {"0xffffffff", -1},
                                                        {"-2147483648", INT32_MIN},
                                                        {"none", 0},
                                                        {"", 0}};
  for (const auto& [text, number] : cases) {
    settings.SetText("n", text);
    EXPECT_EQ(settings.GetInt("n"), number) << text;
    settings.SetInt("m", number);
    EXPECT_EQ(settings.GetInt("m"), number);
  }
  settings.SetInt("m", 255);
  EXPECT_EQ(settings.GetText("m"), "0xff");
}

TEST(SettingsFile, HexadecimalBytesStopAtSixteen) {
  CSettingsFile settings;
  std::array<std::uint8_t, 16> bytes = {9, 9, 9, 9};
  settings.SetText("h", "aFg1zz7");
  EXPECT_EQ(settings.GetHex("h", bytes), 3);
  EXPECT_EQ(bytes, (std::array<std::uint8_t, 16>{0xAF, 1, 0, 9}));
  settings.SetText("h", std::string(33, 'f'));
  EXPECT_EQ(settings.GetHex("h", bytes), 16);
}

}  // namespace
}  // namespace nvsupport
