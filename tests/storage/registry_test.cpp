// Registry files as they are found on disk, and the texts that the library reads from them.
#include <gtest/gtest.h>

#include <string>

#include "platform/platform.h"
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
      "\"WideBytes\"=hex:61,162\n"
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
      {"CutBytes", "ab"},     {"Good", "yes"},         {"WideBytes", "a"}};
  for (const auto& [name, text] : values) EXPECT_EQ(UserText(name), text) << name;
  EXPECT_EQ(GetRegistryText(HKEY_LOCAL_MACHINE, key, "Language", "default"), "default");
}

TEST(Registry, TextsOf260CharactersFitAndLongerOnesGiveTheDefault) {
  const TemporaryHome home;
  const std::string fits(260, 'x');
  std::string unterminated = "\"Unterminated\"=hex(1):";
  for (int count = 0; count < 261; ++count) unterminated += "79,";
  home.WriteUserRegistry("[HKEY_CURRENT_USER\\Software\\Norvane]\n\"Fits\"=\"" + fits + "\"\n\"Long\"=\"" + fits +
                         "x\"\n" + unterminated);
  EXPECT_EQ(UserText("Fits"), fits);
  EXPECT_EQ(UserText("Long"), "default");
  EXPECT_EQ(UserText("Unterminated"), std::string(261, 'y'));
}

TEST(Registry, TheFirstMachineFileCounts) {
  const TemporaryHome home;
  for (const std::string folder : {"second", "third"}) {
    testing::WriteWholeFile(home.folder / folder + "/norvane/registry.reg",
                            "REGEDIT4\n[HKEY_LOCAL_MACHINE\\Software\\Norvane]\n\"of the " + folder + "\"=\"yes\"\n");
  }
  const testing::ScopedVariable folders(
      "XDG_CONFIG_DIRS",
      (home.folder / "first") + ":relative::" + (home.folder / "second/") + ":" + (home.folder / "third"));
  EXPECT_EQ(GetRegistryText(HKEY_LOCAL_MACHINE, key, "of the second", "no"), "yes");
  EXPECT_EQ(GetRegistryText(HKEY_LOCAL_MACHINE, key, "of the third", "no"), "no");
}

}  // namespace
}  // namespace nvsupport
