// Which language a freshly loaded module works in, seen from outside: the module looks its message caption up as it
// is loaded, and the miss file of its unloading tells whether the catalogue in force had it.
#include <gtest/gtest.h>

#include "support/run_program.h"
#include "support/temporary_home.h"

namespace nvsupport {
namespace {

using testing::WriteWholeFile;

const std::vector<std::string> languages = {"Deutsch", "English", "Francais", "Nederlands"};

class LoadedModule {
 public:
  LoadedModule(const std::string& userLanguage, const std::string& installedLanguage) {
    if (!userLanguage.empty()) {
      home.WriteUserRegistry("[HKEY_CURRENT_USER\\Software\\Norvane]\n\"Language\"=\"" + userLanguage + "\"\n");
    }
    if (!installedLanguage.empty()) {
      home.WriteMachineRegistry("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Norvane]\n\"inst_language\"=\"" + installedLanguage +
                                "\"\n");
    }
    std::filesystem::create_directory(home.folder / "lib");
    std::filesystem::create_symlink(NV_MODULE, home.folder / "lib/nvsupport.so");
  }

  void WriteLanguage(const std::string& language, const std::string& bytes) const {
    WriteWholeFile(home.folder / ("lib/nvsupport." + language + ".txt"), bytes);
  }

  void LoadAndUnload() const {
    EXPECT_EQ(testing::RunProgram({NV_LOAD_MODULE, home.folder / "lib/nvsupport.so"}).exitCode, 0);
  }

  // Whether the module had a text for its caption.
  bool TranslatesItsCaption() const {
    std::filesystem::remove_all(home.folder / "documents");
    std::filesystem::create_directories(home.folder / "documents/NVTranslation");
    LoadAndUnload();
    return testing::ReadWholeFile(home.folder / "documents/NVTranslation/nvsupport.txt").empty();
  }

  testing::TemporaryHome home;
};

TEST(LanguageChoice, FollowsTheUserBeforeTheInstaller) {
  const struct {
    const char* user;
    const char* installer;
    const char* language;  // empty: none, the source texts
  } cases[] = {
      {"", "", ""},
      {"Deutsch", "", "Deutsch"},
      {"English", "", "English"},
      {"", "1031", "Deutsch"},
      {"", "1033", "English"},
      {"", "1036", "Francais"},
      {"", "1043", "Nederlands"},
      {"", "2057", "English"},
      {"", " +1031 (German)", "Deutsch"},
      {"Deutsch", "1036", "Deutsch"},
      {"", "1034", ""},
      {"", "German", ""},
      {"", "0x407", ""},
      {"", "4294968327", ""},
      {"Suomi", "1031", ""},
      {"x/../nvsupport.Deutsch", "1031", ""},
      {"deutsch", "", ""},
  };
  for (const auto& item : cases) {
    const LoadedModule module(item.user, item.installer);
    for (const std::string& language : languages) {
      module.WriteLanguage(language, language == item.language ? "Other\tX\n" : "Account Manager\tX\n");
    }
    EXPECT_FALSE(module.TranslatesItsCaption()) << item.user << " | " << item.installer;
    if (std::string(item.language).empty()) continue;
    for (const std::string& language : languages) {
      module.WriteLanguage(language, language == item.language ? "Account Manager\tX\n" : "Other\tX\n");
    }
    EXPECT_TRUE(module.TranslatesItsCaption()) << item.user << " | " << item.installer;
  }
}

TEST(LanguageChoice, NeedsNoFileForEnglish) {
  EXPECT_FALSE(LoadedModule("English", "").TranslatesItsCaption());
}

TEST(LanguageChoice, LeavesNoFileBehindWithoutTheFolderForMisses) {
  const LoadedModule module("", "");
  module.LoadAndUnload();
  for (const auto& entry : std::filesystem::recursive_directory_iterator(module.home.folder.path)) {
    EXPECT_TRUE(entry.is_directory() || entry.is_symlink()) << entry.path();
  }
}

}  // namespace
}  // namespace nvsupport
