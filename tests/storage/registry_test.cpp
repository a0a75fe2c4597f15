// Registry files as they are found on disk, and the texts that the library reads from them.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "registry_file.h"
#include "storage/desktop.h"
#include "support/temporary_home.h"

namespace nvsupport {
namespace {

using testing::TemporaryHome;

constexpr const char* key = "Software\\Norvane";

std::string UserText(const std::string& value) {
  return GetRegistryText(HKEY_CURRENT_USER, key, value, "default");
}

TEST(Registry, ReadsEveryFormOfValueAndSkipsBrokenLines) {
  const TemporaryHome home;
  home.WriteUserRegistry(
      "; a comment\r\n"
      "[HKEY_CURRENT_USER\\Other]\r\n"
      "\"Language\"=\"wrong\"\r\n"
      "  [hkey_current_user\\SOFTWARE\\norvane]  \r\n"
      "@=\"standard\"\r\n"
      "\"Language\"=\"Deutsch\" ; behind it\r\n"
      "\"Path\" = \"C:\\\\maps\\\\\\\"new\\\"\"\n"
      "\"Single\"=\"C:\\maps\"\n"
      "\"a=\\\"b\\\"\"=\"odd name\"\n"
      "\"Number\"=dword:00434241\n"
      "\"Text\"=hex(1):61,62,\\\r\n"
      "  63 , 64,\\\n"
      "  00 ; the end\r\n"
      "\"Gone\"=\"x\"\n"
      "\"gone\"=-\n"
      "\"Twice\"=\"first\"\n"
      "\"NoEnd\"=\"abc\n"
      "\"NoValue\"\n"
      "\"NoForm\"=abc\n"
      "\"NoNumber\"=dword:xyz\n"
      "\"HalfBytes\"=hex:61,62,xy,63\n"
      "\"CutBytes\"=hex:61,62,\\\n"
      "\"Good\"=\"yes\"\n"
      "[HKEY_CURRENT_USER\\Software\\Norvane\n"
      "\"Good\"=\"no\"\n"
      "[HKEY_LOCAL_MACHINE\\Software\\Norvane]\n"
      "\"Language\"=\"wrong\"\n"
      "[HKEY_CURRENT_USER\\Software\\Norvane]\n"
      "\"TWICE\"=\"second\"");
  const std::pair<const char*, const char*> values[] = {
      {"", "standard"},       {"LANGUAGE", "Deutsch"}, {"Path", "C:\\maps\\\"new\""},
      {"Single", "C:\\maps"}, {"a=\"b\"", "odd name"}, {"Number", "ABC"},
      {"Text", "abcd"},       {"Gone", "default"},     {"Twice", "second"},
      {"Missing", "default"}, {"NoEnd", "default"},    {"NoValue", "default"},
      {"NoForm", "default"},  {"NoNumber", "default"}, {"HalfBytes", "ab"},
      {"CutBytes", "ab"},     {"Good", "yes"}};
  for (const auto& [name, text] : values) EXPECT_EQ(UserText(name), text) << name;
  EXPECT_EQ(GetRegistryText(HKEY_LOCAL_MACHINE, key, "Language", "default"), "default");
}

TEST(Registry, TextsOf260CharactersFitAndLongerOnesGiveTheDefault) {
  const TemporaryHome home;
  const std::string fits(260, 'x');
  std::string unterminated = "hex(1):";
  for (int count = 0; count < 261; ++count) unterminated += "79,";
  home.WriteUserRegistry("[HKEY_CURRENT_USER\\Software\\Norvane]\n\"Fits\"=\"" + fits + "\"\n\"Long\"=\"" + fits +
                         "x\"\n\"Unterminated\"=" + unterminated + "\n");
  EXPECT_EQ(UserText("Fits"), fits);
  EXPECT_EQ(UserText("Long"), "default");
  EXPECT_EQ(UserText("Unterminated"), std::string(261, 'y'));
}

TEST(Registry, TheFirstMachineFileCounts) {
  const TemporaryHome home;
  const std::string head = "REGEDIT4\n[HKEY_LOCAL_MACHINE\\Software\\Norvane]\n";
  testing::WriteWholeFile(home.folder / "second/norvane/registry.reg", head + "\"inst_language\"=\"2\"\n");
  testing::WriteWholeFile(home.folder / "third/norvane/registry.reg", head + "\"Other\"=\"3\"\n");
  const testing::ScopedVariable folders(
      "XDG_CONFIG_DIRS",
      (home.folder / "first") + ":relative::" + (home.folder / "second/") + ":" + (home.folder / "third"));
  EXPECT_EQ(GetRegistryText(HKEY_LOCAL_MACHINE, key, "inst_language", "none"), "2");
  EXPECT_EQ(GetRegistryText(HKEY_LOCAL_MACHINE, key, "Other", "none"), "none");
}

TEST(Registry, RandomFilesAreReadToTheirEnd) {
  std::mt19937 random(20240501);
  const std::string alphabet = "[]\"\\=@;-,:()hexdword0aF \r\n";
  for (int round = 0; round < 2000; ++round) {
    std::string text = "[K]\n\"first\"=\"1\"\n";
    for (auto length = random() % 300; length > 0; --length) text += alphabet[random() % alphabet.size()];
    text += "\n[K]\n\"last\"=\"2\"\n";
    const auto values = platform::FindRegistryKey(text, "K");
    ASSERT_TRUE(values && values->contains("last")) << text;
  }
}

}  // namespace
}  // namespace nvsupport
