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

  // Whether the module had a text for its caption.
  bool TranslatesItsCaption() const {
    std::filesystem::remove_all(home.folder / "documents");
    std::filesystem::create_directories(home.folder / "documents/NVTranslation");
    EXPECT_EQ(testing::RunProgram({NV_LOAD_MODULE, home.folder / "lib/nvsupport.so"}).exitCode, 0);
    return testing::ReadWholeFile(home.folder / "documents/NVTranslation/nvsupport.txt").empty();
  }

  testing::TemporaryHome home;
};

TEST(LanguageChoice, FollowsTheUserBeforeTheInstaller) {
  const struct {
    const char *user, *installer;
    std::string language;  // empty: none, the source texts
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
  for (const auto& [user, installer, inForce] : cases) {
    const LoadedModule module(user, installer);
    // Only the language in force has the caption, then all the others.
    for (const bool itHas : {true, false}) {
      for (const std::string& language : languages) {
        module.WriteLanguage(language, (language == inForce) == itHas ? "Account Manager\tX\n" : "Other\tX\n");
      }
      EXPECT_EQ(module.TranslatesItsCaption(), itHas && !inForce.empty()) << user << " | " << installer;
    }
  }
  EXPECT_FALSE(LoadedModule("English", "").TranslatesItsCaption()) << "English needs no file";
}

}  // namespace
}  // namespace nvsupport
