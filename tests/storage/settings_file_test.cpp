// The settings file: what the reader takes, what the writer puts down, and what comes back.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <utility>
#include <vector>

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
  // What a save of the entries writes tells all of them.
  const std::pair<std::string, std::string> cases[] = {{"", ""},
                                                       {"# nothing\n \t\n\r\n", ""},
                                                       {" \t#note=1\n", ""},
                                                       {"note=a#b", "note=a%23b\n"},
                                                       {"a=1&b=2", "a=1\nb=2\n"},
                                                       {"a&b=2", "b=2\n"},
                                                       {"=x&b=2", "b=2\n"},
                                                       {"a=old\na=&b=2", "a=old\nb=2\n"},
                                                       {"a=1&", "a=1\n"},
                                                       {"a=b=c", "a=b%3dc\n"},
                                                       {"a=100%", "a=100\n"},
                                                       {"a=old\na=%4", ""},
                                                       {"a=50%zz", "a=50%25zz\n"},
                                                       {"a=%%41", "a=%25%2541\n"},
                                                       {"a=%41%42", "a=AB\n"},
                                                       {"a=%e9&b=%E9", "a=%e9\nb=%e9\n"},
                                                       {"a=%00b", "a=%00b\n"},
                                                       {"a=1\r\nb=\r2\0x\nc=3"s, "a=1\nb=2x\nc=3\n"},
                                                       {" \ta\t = \t x y \t& b =2 ", "a=x+y\nb=2\n"},
                                                       {"a+b=c+d&e%41=f", "a+b=c+d\ne%41=f\n"},
                                                       {"[section]\nB=1\na=2\na=3", "B=1\na=3\n"}};
  for (const auto& [bytes, saved] : cases) EXPECT_EQ(SavedBytes(Loaded(bytes)), saved) << bytes;
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
  EXPECT_EQ(Loaded(example).GetText("UserID"), "a b/c&d=e");
}

TEST(SettingsFile, WritesPlainMarksAsTheyAre) {
  CSettingsFile settings;
  settings.SetText("a", "azAZ09$-_.!*'() +%&=#~\n\x80"s + '\0');
  EXPECT_EQ(SavedBytes(settings), "a=azAZ09$-_.!*'()+%2b%25%26%3d%23%7e%0a%80%00\n");
}

TEST(SettingsFile, EveryValueThatIsNotEmptyComesBack) {
  std::mt19937 random(7);
  std::vector<std::string> values = {" ", "  x ", "\t", "\r\n", "%", "+"};
  for (int count = 0; count < 300; ++count) {
    values.emplace_back();
    for (auto length = 1 + random() % 40; length > 0; --length) values.back() += static_cast<char>(random());
  }
  CSettingsFile written;
  for (std::size_t at = 0; at < values.size(); ++at) written.SetText("k" + std::to_string(at), values[at]);
  const CSettingsFile read = Loaded(SavedBytes(written));
  for (std::size_t at = 0; at < values.size(); ++at) EXPECT_EQ(read.GetText("k" + std::to_string(at)), values[at]);
}

TEST(SettingsFile, RandomBytesLoadAndSaveToTheSameEntries) {
  std::mt19937 random(11);
  const std::string alphabet = "ab=&%+4zZ \t\r\n\0\xff"s;
  for (int round = 0; round < 500; ++round) {
    std::string bytes;
    for (auto length = random() % 200; length > 0; --length) bytes += alphabet[random() % alphabet.size()];
    const std::string saved = SavedBytes(Loaded(bytes));
    EXPECT_EQ(SavedBytes(Loaded(saved)), saved) << bytes;
  }
}

TEST(SettingsFile, TimeGrowsWithTheFileAlone) {
  // Were each pair sought to the end of the line, this would run into the time limit of the test.
  EXPECT_EQ(Loaded(std::string(4'000'000, '&') + "a=1").GetText("a"), "1");
}

TEST(SettingsFile, NumbersAreTakenInEveryForm) {
  const std::pair<const char*, std::int32_t> cases[] = {{"255", 255},
                                                        {"0xff", 255},
                                                        {"0377", 255},
                                                        {"+7", 7},
                                                        {"-7", -7},
                                                        {"0xffffffff", -1},
                                                        {"2147483647", 2147483647},
                                                        {"12abc", 12},
                                                        {"none", 0},
                                                        {"", 0}};
  CSettingsFile settings;
  EXPECT_EQ(settings.GetInt("n"), 0);
  for (const auto& [text, number] : cases) {
    settings.SetText("n", text);
    EXPECT_EQ(settings.GetInt("n"), number) << text;
  }
  settings.SetInt("n", 255);
  EXPECT_EQ(settings.GetText("n"), "0xff");
  for (const std::int32_t number : {0, 1, -1, INT32_MAX, INT32_MIN}) {
    settings.SetInt("n", number);
    EXPECT_EQ(settings.GetInt("n"), number);
  }
}

TEST(SettingsFile, HexadecimalBytesStopAtSixteen) {
  const std::pair<std::string, std::vector<std::uint8_t>> cases[] = {
      {"", {}}, {"1", {}}, {"0aF", {10}}, {"g1zz", {1, 0}}, {std::string(33, 'f'), std::vector<std::uint8_t>(16, 255)}};
  for (const auto& [digits, decoded] : cases) {
    CSettingsFile settings;
    settings.SetText("h", digits);
    std::array<std::uint8_t, 16> bytes;
    bytes.fill(9);
    EXPECT_EQ(settings.GetHex("missing", bytes), 0);
    const int count = settings.GetHex("h", bytes);
    EXPECT_EQ(std::vector<std::uint8_t>(bytes.begin(), bytes.begin() + count), decoded) << digits;
    EXPECT_TRUE(std::all_of(bytes.begin() + count, bytes.end(), [](int byte) { return byte == 9; })) << digits;
  }
}

TEST(SettingsFile, SaveReportsWhatTheDiskRefuses) {
  CSettingsFile settings;
  settings.SetText("a", "1");
  const TemporaryFolder folder;
  EXPECT_FALSE(settings.Save(folder / "missing/settings.ini"));
  EXPECT_FALSE(settings.Save(folder.path.string()));
  EXPECT_FALSE(settings.Save("/dev/full"));
}

}  // namespace
}  // namespace nvsupport
