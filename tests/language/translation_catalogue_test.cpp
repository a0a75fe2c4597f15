#include "language/translation_catalogue.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <map>

#include "support/played_user.h"
#include "support/temporary_home.h"

namespace nvsupport {
namespace {

using testing::ReadWholeFile;
using testing::WriteWholeFile;

// A home without registry values and a module called nvsupport.so in a folder of its own.
class Catalogue : public ::testing::Test {
 protected:
  Catalogue() {
    std::filesystem::create_directory(home.folder / "lib");
    std::filesystem::copy_file(NV_EMPTY_MODULE, home.folder / "lib/nvsupport.so");
    loaded = dlopen((home.folder / "lib/nvsupport.so").c_str(), RTLD_NOW | RTLD_LOCAL);
    catalogue->Init(static_cast<HINSTANCE>(dlsym(loaded, "nvsupportTestModule")));
  }
  ~Catalogue() override {
    catalogue.reset();
    dlclose(loaded);
  }

  void WriteLanguage(const std::string& name, const std::string& bytes) const {
    WriteWholeFile(home.folder / ("lib/nvsupport." + name + ".txt"), bytes);
  }

  testing::TemporaryHome home;
  void* loaded = nullptr;
  std::optional<CTranslationCatalogue> catalogue{std::in_place};
};

TEST_F(Catalogue, ChangesOverOnlyToALanguageThatHasEntries) {
  WriteLanguage("Deutsch", "Yes\tJa\n");
  WriteLanguage("Empty", "no tab\n");
  EXPECT_TRUE(catalogue->SetLanguage("Deutsch"));
  EXPECT_EQ(catalogue->Translate("Yes"), "Ja");

  WriteLanguage("Deutsch", "Yes\tJawohl\n");
  EXPECT_FALSE(catalogue->SetLanguage("Deutsch"));
  EXPECT_EQ(catalogue->Translate("Yes"), "Ja") << "the language in force is not read again";

  std::filesystem::create_directory(home.folder / "lib/nvsupport.Folder.txt");
  for (const char* unreadable : {"Missing", "Folder"}) {
    EXPECT_FALSE(catalogue->SetLanguage(unreadable)) << unreadable;
    EXPECT_EQ(catalogue->Translate("Yes"), "Ja") << unreadable;
  }

  EXPECT_FALSE(catalogue->SetLanguage("Empty"));
  EXPECT_EQ(catalogue->Translate("Yes"), "Yes") << "a file without entries clears the catalogue";
  EXPECT_EQ(catalogue->Language(), "Deutsch");

  ASSERT_TRUE(catalogue->LoadCatalogueFile(catalogue->GetCatalogueFileName("Deutsch")));
  EXPECT_TRUE(catalogue->SetLanguage("English"));
  EXPECT_EQ(catalogue->Translate("Yes"), "Yes") << "English needs no file and keeps nothing of another";
}

TEST_F(Catalogue, FindsEachTextOfAFileInAnyOrder) {
  WriteLanguage("Deutsch", "b\t1\n\\ta\\n\t\"say \"\"2\"\"\"\r\nB\t3\nb\t4\nno tab\nba\t5\n\"\t6\nb\t7\nlast\t8");
  ASSERT_TRUE(catalogue->SetLanguage("Deutsch"));
  for (const auto& [source, translation] : std::map<std::string, std::string>{{"b", "7"},
                                                                              {"\ta\n", "say \"2\""},
                                                                              {"B", "3"},
                                                                              {"ba", "5"},
                                                                              {"", "6"},
                                                                              {"last", "8"},
                                                                              {"no tab", "no tab"},
                                                                              {"a", "a"},
                                                                              {"z", "z"}}) {
    EXPECT_EQ(catalogue->Translate(source), translation) << source;
  }
}

TEST_F(Catalogue, TakesTheLanguageOfTheUserBeforeTheInstallers) {
  for (const char* name : {"Deutsch", "Francais"}) WriteLanguage(name, "Yes\tX\n");
  const struct {
    std::string user, installer, inForce;
  } cases[] = {
      {"", "", ""},
      {"Deutsch", "", "Deutsch"},
      {"English", "", "English"},
      {"", "1031", "Deutsch"},
      {"", "2057", "English"},
      {"", " +1031 (German)", "Deutsch"},
      {"Deutsch", "1036", "Deutsch"},
      {"", "1034", ""},
      {"", "German", ""},
      {"", "0x407", ""},
      {"", "4294968327", ""},
      {"Suomi", "1031", ""},
  };
  for (const auto& [user, installer, inForce] : cases) {
    home.WriteUserRegistry("[HKEY_CURRENT_USER\\Software\\Norvane]\n\"Language\"=\"" + user + "\"\n");
    home.WriteMachineRegistry("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Norvane]\n\"inst_language\"=\"" + installer + "\"\n");
    catalogue.emplace().Init(static_cast<HINSTANCE>(dlsym(loaded, "nvsupportTestModule")));
    EXPECT_EQ(catalogue->Language(), inForce) << user << " | " << installer;
    const PlayedUser person;
    MessageBoxA(nullptr, "", "", MB_OK);
    EXPECT_EQ(person.language, inForce) << "of its buttons";
  }
}

TEST_F(Catalogue, OfALinkedModuleStandsBesideTheLinkElseWhereItLeads) {
  std::filesystem::copy_file(NV_EMPTY_MODULE, home.folder / "lib/real.so");
  std::filesystem::create_symlink("lib/real.so", home.folder / "link.so");
  void* const linked = dlopen((home.folder / "link.so").c_str(), RTLD_NOW | RTLD_LOCAL);
  catalogue.emplace().Init(static_cast<HINSTANCE>(dlsym(linked, "nvsupportTestModule")));
  for (const std::string file : {"lib/real.Deutsch.txt", "lib/real.Suomi.txt", "link.Suomi.txt"}) {
    WriteWholeFile(home.folder / file, "Yes\t" + file + "\n");
    EXPECT_TRUE(catalogue->SetLanguage("English"));
    EXPECT_TRUE(catalogue->SetLanguage(file.find("Suomi") == std::string::npos ? "Deutsch" : "Suomi"));
    EXPECT_EQ(catalogue->Translate("Yes"), file);
  }
  dlclose(linked);
}

TEST_F(Catalogue, TakesTheLanguageOfTheDesktopWhereNoFileTellsTheInstallers) {
  for (const char* name : {"Deutsch", "Francais", "Nederlands"}) WriteLanguage(name, "Yes\tX\n");
  const struct {
    const char *all, *messages, *lang;
    std::string installer, inForce;
  } cases[] = {
      {"", "", "de_AT.UTF-8", "", "Deutsch"},
      {"", "fr@euro", "de_DE", "", "Francais"},
      {"nl", "fr_FR", "de_DE", "", "Nederlands"},
      {"C.UTF-8", "fr_FR", "de_DE", "", ""},
      {"", "", "nds_DE", "", ""},
      {"", "", "de_DE", "\"inst_language\"=\"1036\"", "Francais"},
      {"", "", "de_DE", "\"inst_language\"=\"\"", ""},
      {"", "", "de_DE", "\"other\"=\"1036\"", "Deutsch"},
  };
  for (const auto& [all, messages, lang, installer, inForce] : cases) {
    const testing::ScopedVariable first("LC_ALL", all), second("LC_MESSAGES", messages), third("LANG", lang);
    if (!installer.empty()) home.WriteMachineRegistry("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Norvane]\n" + installer);
    catalogue.emplace().Init(static_cast<HINSTANCE>(dlsym(loaded, "nvsupportTestModule")));
    EXPECT_EQ(catalogue->Language(), inForce) << all << '|' << messages << '|' << lang << '|' << installer;
  }
}

TEST_F(Catalogue, WritesEachMissOnceInByteOrder) {
  const std::string missFile = home.folder / "documents/NVTranslation/nvsupport.txt";
  WriteWholeFile(missFile, "of an earlier run");
  catalogue->Translate("OK");
  catalogue->Translate("OK");
  catalogue->Translate("\x80\tA\nB");
  catalogue->Translate("");
  catalogue->WriteMissFile();
  const std::string placeholder("\t\0X\0X\0X\0X\0\r\0\n\0", 14);
  EXPECT_EQ(ReadWholeFile(missFile), "\xFF\xFE" + placeholder + std::string("O\0K\0", 4) + placeholder +
                                         std::string("\x80\0\\\0t\0A\0\\\0n\0B\0", 14) + placeholder);

  ASSERT_TRUE(catalogue->LoadCatalogueFile(missFile)) << "a miss file is a catalogue";
  EXPECT_EQ(catalogue->Translate("\x80\tA\nB"), "XXXX");
  std::filesystem::remove(missFile);
  catalogue->WriteMissFile();
  EXPECT_FALSE(std::filesystem::exists(missFile)) << "what was missing before is not told again";
}

}  // namespace
}  // namespace nvsupport
