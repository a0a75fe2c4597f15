// What the user reads: translated dialogs, message boxes, button dialogs.
#include <gtest/gtest.h>

#include <map>

#include "language/translation_catalogue.h"
#include "probes.h"
#include "support/played_user.h"
#include "support/temporary_home.h"
#include "ui/button_dialog.h"
#include "ui/message.h"

namespace nvsupport {
namespace {

class ShownText : public ::testing::Test {
 protected:
  ~ShownText() override {
    SetMessageCaption("");
    translations.WriteMissFile();  // empties the catalogue
  }

  void LoadCatalogue(const std::string& lines) {
    const std::string path = home.folder / "catalogue.txt";
    testing::WriteWholeFile(path, lines);
    ASSERT_TRUE(translations.LoadCatalogueFile(path));
  }

  testing::TemporaryHome home;
  PlayedUser person;
};

TEST_F(ShownText, OfADialogIsTranslatedBeforeItsOwnInitAndNotedWhereMissing) {
  LoadCatalogue("Probe\tSonde\nKnown text\tBekannt\nOK\tOK\nset later\twrong\n");
  std::filesystem::create_directories(home.folder / "documents/NVTranslation");
  ProbeDialog dialog;
  dialog.atInit = [&] {
    EXPECT_EQ(dialog.getItemText(IDC_LABEL), "Bekannt");
    dialog.setItemText(IDC_EDIT, "set later");
  };
  person.steps = {[&](HWND window) {
    EXPECT_EQ(headless::ViewOf(window)->title, "Sonde");
    EXPECT_EQ(dialog.getItemText(IDC_THREE_STATES), "Unknown text");
    EXPECT_EQ(dialog.getItemText(IDC_EDIT), "set later");
    EndDialog(window, 1);
  }};
  dialog.run(nullptr);
  ShowMessageFormat(nullptr, MB_OK, "Code %d", 12);
  translations.WriteMissFile();

  const std::filesystem::directory_iterator missFile(home.folder / "documents/NVTranslation");
  std::string misses = testing::ReadWholeFile(missFile->path());
  std::erase(misses, '\0');  // the file is of 16-bit characters
  for (const auto& [text, missed] : std::map<std::string, bool>{{"Unknown text", true},
                                                                {"More", true},
                                                                {"Code %d", true},
                                                                {"Probe", false},
                                                                {"OK", false},
                                                                {"set later", false},
                                                                {"Code 12", false}}) {
    EXPECT_EQ(misses.find(text) != std::string::npos, missed) << text;
  }
}

TEST_F(ShownText, OfAnEmbeddedDialogIsTranslatedButItsPlaceIsItsParents) {
  LoadCatalogue("Known text\tBekannt\n");
  ProbeDialog embedded(IDD_EMBEDDED);
  person.steps = {[&](HWND window) {
    EXPECT_EQ(embedded.getItemText(IDC_LABEL), "Bekannt");
    RECT place{};
    GetWindowRect(window, &place);
    EXPECT_EQ(place.left, 0) << "moved";
    EndDialog(window, 1);
  }};
  embedded.run(nullptr);
}

TEST_F(ShownText, OfAMessageIsLookedUpByItsSource) {
  LoadCatalogue("Hello\tHallo\nCode %d\tNummer %d\nWrong %d\tWrong %s\n%s\t<%s>\n");
  SetMessageCaption("Caption");
  SetMessageCaption(messageCaption);
  constexpr std::uintptr_t ownerId = 0x4400001;
  const HWND owner = reinterpret_cast<HWND>(ownerId);
  headless::Screen().foreignWindows[ownerId] = {0, 0, 100, 100};

  person.answers = {7};
  EXPECT_EQ(ShowMessage(owner, MB_ICONERROR, "Hello"), 7);
  ShowMessage(nullptr, MB_OK, "Unknown");
  ShowMessageFormat(nullptr, MB_OK, "Code %d", -7);
  ShowMessageFormat(nullptr, MB_OK, "Wrong %d", 5);  // a translation with other conversions is not used
  ShowMessageFormat(nullptr, MB_OK, "Unknown %s", "Hello");
  ShowMessageFormat(nullptr, MB_OK, "%s", std::string(2000, 'x').c_str());

  EXPECT_EQ(person.boxes[0].foreignOwner, ownerId);
  EXPECT_EQ(person.boxes[0].type, MB_ICONERROR);
  EXPECT_EQ(person.boxes[1].foreignOwner, 0u);
  Noted shown;
  for (const auto& box : person.boxes) {
    EXPECT_EQ(box.caption, "Caption");
    shown.push_back(box.text);
  }
  EXPECT_EQ(shown, (Noted{"Hallo", "Unknown", "Nummer -7", "Wrong 5", "Unknown Hello", "<" + std::string(998, 'x')}));
}

TEST_F(ShownText, OfAButtonDialogStandsAsGivenAndEachButtonTells) {
  LoadCatalogue("given\ttranslated\n");
  const auto notification = [](WPARAM id) {
    return [id](HWND window) { SendMessageA(window, WM_COMMAND, 0x0300'0000 | id, 0); };
  };
  const struct {
    PlayedUser::Step act;
    std::uint32_t textControl;
    std::string shown;
    std::uint32_t result;
  } cases[] = {
      {PlayedUser::Clicks(IDOK), IDC_LABEL, "given", 1},
      {PlayedUser::Clicks(IDCANCEL), 0, "Known text", 2},
      {PlayedUser::Clicks(IDC_BUTTON), IDC_LABEL, "given", IDC_BUTTON},
      // Notifications with the ids of OK and Cancel act as in any dialog.
      {notification(IDOK), IDC_LABEL, "given", 1},
      {notification(IDCANCEL), IDC_LABEL, "given", 2},
  };
  for (const auto& row : cases) {
    person.steps = {[&](HWND window) {
      EXPECT_EQ(headless::ViewOf(window)->controls[0].text, row.shown);
      row.act(window);
    }};
    EXPECT_EQ(ShowButtonDialog(IDD_PROBE, nullptr, "given", row.textControl, 0), row.result);
  }
  EXPECT_EQ(ShowButtonDialog(IDD_NO_TEMPLATE, nullptr, "given", 0, 0), 2u);
}

}  // namespace
}  // namespace nvsupport
