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

const std::string absent = "<absent>";

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
  const struct {
    std::string bytes;
    std::vector<std::pair<std::string, std::string>> entries;
  } cases[] = {
      {"", {{"a", absent}}},
      {"# nothing\n \t\n\r\n", {{"a", absent}}},
      {" \t#note=1\n", {{"note", absent}, {"#note", absent}}},
      {"note=a#b", {{"note", "a#b"}}},
      {"a=1&b=2", {{"a", "1"}, {"b", "2"}}},
      {"a&b=2", {{"a", absent}, {"b", "2"}}},
      {"=x&b=2", {{"", absent}, {"b", "2"}}},
      {"a=old\na=&b=2", {{"a", "old"}, {"b", "2"}}},
      {"a=1&", {{"a", "1"}}},
      {"a=b=c", {{"a", "b=c"}}},
      {"a=100%", {{"a", "100"}}},
      {"a=old\na=%4", {{"a", ""}}},
      {"a=50%zz", {{"a", "50%zz"}}},
      {"a=%%41", {{"a", "%%41"}}},
      {"a=%41%42", {{"a", "AB"}}},
      {"a=%e9&b=%E9", {{"a", "\xe9"}, {"b", "\xe9"}}},
      {"a=%00b", {{"a", "\0b"s}}},
      {"a=1\r\nb=\r2\0x\nc=3"s, {{"a", "1"}, {"b", "2x"}, {"c", "3"}}},
      {" \ta\t = \t x y \t& b =2 ", {{"a", "x y"}, {"b", "2"}}},
      {"a+b=c+d&e%41=f", {{"a+b", "c d"}, {"e%41", "f"}}},
      {"[section]\nA=1\na=2\na=3", {{"[section]", absent}, {"A", "1"}, {"a", "3"}}},
  };
  for (const auto& each : cases) {
    const CSettingsFile settings = Loaded(each.bytes);
    for (const auto& [key, value] : each.entries) EXPECT_EQ(settings.GetText(key, absent), value) << each.bytes;
  }
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
  const TemporaryFolder folder;
  std::mt19937 random(7);
  CSettingsFile written;
  std::vector<std::string> values(300);
  for (std::size_t at = 0; at < values.size(); ++at) {
    for (auto length = 1 + random() % 40; length > 0; --length) values[at] += static_cast<char>(random());
    written.SetText("k" + std::to_string(at), values[at]);
  }
  for (const char* blank : {" ", "  x ", "\t", "\r\n", "%", "+"}) {
    written.SetText("k" + std::to_string(values.size()), blank);
    values.emplace_back(blank);
  }
  ASSERT_TRUE(written.Save(folder / "settings.ini"));
  CSettingsFile read;
  ASSERT_TRUE(read.Load(folder / "settings.ini"));
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
  const std::pair<const char*, std::int32_t> cases[] = {
      {"255", 255},
      {"0xff", 255},
      {"0377", 255},
      {"+7", 7},
      {"-7", -7},
      {"0xffffffff", -1},
      {"2147483647", 2147483647},
      {"12abc", 12},
      {"none", 0},
      {"", 0},
  };
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
  const struct {
    std::string digits;
    int count;
    std::array<std::uint8_t, 3> first;
  } cases[] = {{"", 0, {9, 9, 9}},
               {"1", 0, {9, 9, 9}},
               {"0aF", 1, {10, 9, 9}},
               {"g1zz", 2, {1, 0, 9}},
               {std::string(33, 'f'), 16, {255, 255, 255}}};
  for (const auto& each : cases) {
    CSettingsFile settings;
    settings.SetText("h", each.digits);
    std::array<std::uint8_t, 16> bytes;
    bytes.fill(9);
    EXPECT_EQ(settings.GetHex("h", bytes), each.count) << each.digits;
    EXPECT_TRUE(std::equal(each.first.begin(), each.first.end(), bytes.begin())) << each.digits;
    EXPECT_EQ(settings.GetHex("missing", bytes), 0);
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
