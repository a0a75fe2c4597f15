// What the user reads: translated dialogs, message boxes, button dialogs.
#include <gtest/gtest.h>

#include "language/translation_catalogue.h"
#include "resources/resource_ids.h"
#include "support/played_user.h"
#include "support/temporary_home.h"
#include "ui/button_dialog.h"
#include "ui/dialog.h"
#include "ui/message.h"

namespace nvsupport {
namespace {

class ShownText : public ::testing::Test {
 protected:
  ShownText() {
    testing::WriteWholeFile(home.folder / "texts.txt",
                            "Give your Computer a Name\tSonde\nHelp\tHilfe\nOK\tOK\nset later\twrong\n"
                            "Hello\tHallo\nCode %d\tNummer %d\nWrong %d\tWrong %s\n%s\t<%s>\ngiven\twrong\n");
    EXPECT_TRUE(translations.LoadCatalogueFile(home.folder / "texts.txt"));
  }
  ~ShownText() override {
    SetMessageCaption("");
    translations.WriteMissFile();  // empties the catalogue
  }

  testing::TemporaryHome home;
  PlayedUser person;
};

TEST_F(ShownText, OfADialogIsTranslatedBeforeItsOwnInitAndNotedWhereMissing) {
  std::filesystem::create_directories(home.folder / "documents/NVTranslation");
  class Probe final : public Dialog {
   public:
    Probe() : Dialog(IDD_COMPUTER_NAME) {}
    INT_PTR onInitDialog(WPARAM, LPARAM) override {
      EXPECT_EQ(getItemText(IDC_HELP_PAGE), "Hilfe");
      setItemText(IDC_COMPUTER_NAME, "set later");
      return 1;
    }
  };
  person.steps = {[&](HWND window) {
    EXPECT_EQ(PlayedUser::ViewOf(window)->title, "Sonde");
    EXPECT_EQ(PlayedUser::ViewOf(window)->controls[2].text, "set later");
    EndDialog(window, 1);
  }};
  Probe().run(nullptr);
  translations.WriteMissFile();

  const std::filesystem::directory_iterator missFile(home.folder / "documents/NVTranslation");
  std::string misses = testing::ReadWholeFile(missFile->path());
  std::erase(misses, '\0');  // the file is of 16-bit characters
  EXPECT_NE(misses.find("Computer name"), std::string::npos);
  EXPECT_FALSE(misses.starts_with("\xFF\xFE\t")) << "a field without text is no miss";
  EXPECT_EQ(misses.find("Give your"), std::string::npos);
  EXPECT_EQ(misses.find("set later"), std::string::npos);
}

TEST_F(ShownText, OfAMessageIsLookedUpByItsSource) {
  SetMessageCaption("Caption");
  EXPECT_EQ(ShowMessage(nullptr, MB_ICONERROR, "Hello"), IDOK);
  ShowMessageFormat(nullptr, MB_ICONERROR, "Code %d", -7);
  ShowMessageFormat(nullptr, MB_ICONERROR, "Wrong %d", 5);  // a translation with other conversions is not used
  ShowMessageFormat(nullptr, MB_ICONERROR, "Unknown %s", "Hello");
  ShowMessageFormat(nullptr, MB_ICONERROR, "%s", std::string(2000, 'x').c_str());
  std::string shown;
  for (const auto& box : person.boxes) {
    EXPECT_EQ(box.caption, "Caption");
    EXPECT_EQ(box.type, MB_ICONERROR);
    shown += box.text + '\n';
  }
  const std::string cut(998, 'x');
  EXPECT_EQ(shown, "Hallo\nNummer -7\nWrong 5\nUnknown Hello\n<" + cut + '\n');
}

TEST_F(ShownText, OfAButtonDialogStandsAsGivenAndEachButtonTells) {
  constexpr int notification = 0x300'0000;  // with the ids of OK and Cancel it acts as in any dialog
  for (const int command : {IDOK, IDCANCEL, IDC_HELP_PAGE, notification | IDOK, notification | IDCANCEL}) {
    const bool isTextGiven = command != IDCANCEL;
    person.steps = {[=](HWND window) {
      EXPECT_EQ(PlayedUser::ViewOf(window)->controls[2].text, isTextGiven ? "given" : "") << command;
      SendMessageA(window, WM_COMMAND, static_cast<WPARAM>(command), 0);
    }};
    const std::uint32_t textControl = isTextGiven ? IDC_COMPUTER_NAME : 0;
    EXPECT_EQ(ShowButtonDialog(IDD_COMPUTER_NAME, nullptr, "given", textControl, 0),
              LOWORD(static_cast<WPARAM>(command)));
  }
  EXPECT_EQ(ShowButtonDialog(299, nullptr, "given", 0, 0), 2u);
}

}  // namespace
}  // namespace nvsupport
