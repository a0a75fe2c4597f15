// What the user reads: translated dialogs, message boxes, button dialogs.
#include <gtest/gtest.h>

#include "language/translation_catalogue.h"
#include "probe_dialog.h"
#include "support/played_user.h"
#include "support/temporary_home.h"
#include "ui/button_dialog.h"
#include "ui/exceptions.h"
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

TEST_F(ShownText, OfADialogIsTranslatedBeforeItsOwnInit) {
  LoadCatalogue("Probe\tSonde\nKnown text\tBekannt\nOK\tOK\nfilled in\twrong\n");
  ProbeDialog dialog;
  dialog.atInit = [&] {
    EXPECT_EQ(dialog.getItemText(IDC_LABEL), "Bekannt");
    dialog.setItemText(IDC_EDIT, "filled in");
  };
  person.steps = {[&](HWND window) {
    ASSERT_NE(user::ViewOf(window), nullptr);
    EXPECT_EQ(user::ViewOf(window)->title, "Sonde");
    EXPECT_EQ(dialog.getItemText(IDC_LABEL), "Bekannt");
    EXPECT_EQ(dialog.getItemText(IDC_BOX), "Unknown text");
    EXPECT_EQ(dialog.getItemText(IDC_EDIT), "filled in");
    EndDialog(window, 1);
  }};
  dialog.run(nullptr);
}

TEST_F(ShownText, OfAnEmbeddedDialogIsTranslatedButItsPlaceIsItsParents) {
  LoadCatalogue("Known text\tBekannt\n");
  ProbeDialog outer;
  ProbeDialog embedded(IDD_EMBEDDED);
  std::size_t movesBefore = 0;
  person.steps = {
      [&](HWND window) {
        movesBefore = user::Record().moves.size();
        embedded.run(window);
        EndDialog(window, 1);
      },
      [&](HWND window) {
        EXPECT_EQ(embedded.getItemText(IDC_LABEL), "Bekannt");
        EndDialog(window, 1);
      },
  };
  outer.run(nullptr);
  EXPECT_EQ(user::Record().moves.size(), movesBefore);
}

TEST_F(ShownText, OfAMessageIsLookedUpByItsSource) {
  LoadCatalogue("Hello\tHallo\nCode %d\tNummer %d\nWrong %d\tWrong %s\n%s\t<%s>\n");
  SetMessageCaption("Caption");
  SetMessageCaption(messageCaption);
  constexpr std::uintptr_t ownerId = 0x4400001;
  const HWND owner = reinterpret_cast<HWND>(ownerId);
  user::Screen().foreignWindows[ownerId] = {0, 0, 100, 100};

  person.answers = {7};
  EXPECT_EQ(ShowMessage(owner, MB_ICONERROR, "Hello"), 7);
  ShowMessage(nullptr, MB_OK, "Unknown");
  ShowMessage(nullptr, MB_OK, "");
  ShowMessageFormat(owner, MB_ICONINFORMATION, "Code %d", -7);
  ShowMessageFormat(nullptr, MB_OK, "Wrong %d", 5);
  ShowMessageFormat(nullptr, MB_OK, "Unknown %s", "Hello");
  ShowMessageFormat(nullptr, MB_OK, "%s", std::string(2000, 'x').c_str());

  const struct {
    std::uintptr_t owner;
    UINT type;
    std::string text;
  } expected[] = {
      {ownerId, MB_ICONERROR, "Hallo"},
      {0, MB_OK, "Unknown"},
      {0, MB_OK, ""},
      {ownerId, MB_ICONINFORMATION, "Nummer -7"},
      {0, MB_OK, "Wrong 5"},  // a translation with other conversions is not used
      {0, MB_OK, "Unknown Hello"},
      {0, MB_OK, "<" + std::string(998, 'x')},
  };
  ASSERT_EQ(person.boxes.size(), std::size(expected));
  for (std::size_t i = 0; i < std::size(expected); ++i) {
    EXPECT_EQ(person.boxes[i].text, expected[i].text);
    EXPECT_EQ(person.boxes[i].caption, "Caption");
    EXPECT_EQ(person.boxes[i].foreignOwner, expected[i].owner);
    EXPECT_EQ(person.boxes[i].type, expected[i].type);
  }
}

TEST_F(ShownText, ThatIsMissingGoesIntoTheMissesAsItsSource) {
  LoadCatalogue("Probe\tSonde\n");
  std::filesystem::create_directories(home.folder / "documents/NVTranslation");
  ProbeDialog dialog;
  dialog.atInit = [&] { dialog.setItemText(IDC_EDIT, "filled in"); };
  person.steps = {[](HWND window) { EndDialog(window, 1); }};
  dialog.run(nullptr);
  ShowMessageFormat(nullptr, MB_OK, "Code %d", 12);
  translations.WriteMissFile();

  std::string misses;
  for (const auto& file : std::filesystem::directory_iterator(home.folder / "documents/NVTranslation")) {
    misses += testing::ReadWholeFile(file.path());
  }
  std::erase(misses, '\0');  // the file is of 16-bit characters
  for (const char* const missed : {"Known text", "Unknown text", "More", "Code %d"}) {
    EXPECT_NE(misses.find(missed), std::string::npos) << missed;
  }
  for (const char* const other : {"Probe", "filled in", "Code 12"}) {
    EXPECT_EQ(misses.find(other), std::string::npos) << other;
  }
}

TEST_F(ShownText, OfAButtonDialogStandsAsGivenAndEachButtonTells) {
  LoadCatalogue("given\ttranslated\n");
  const auto click = [](int id) { return [id](HWND window) { user::Click(GetDlgItem(window, id)); }; };
  const struct {
    PlayedUser::Step act;
    std::uint32_t textControl;
    std::string shown;
    std::uint32_t result;
  } cases[] = {
      {click(IDOK), IDC_LABEL, "given", 1},
      {click(IDCANCEL), 0, "Template text", 2},
      {click(IDC_BUTTON), IDC_LABEL, "given", IDC_BUTTON},
      {[](HWND window) { user::CloseBox(window); }, IDC_LABEL, "given", 2},
      // Notifications with the ids of OK and Cancel act as in any dialog.
      {[](HWND window) { SendMessageA(window, WM_COMMAND, 0x0300'0001, 0); }, IDC_LABEL, "given", 1},
      {[](HWND window) { SendMessageA(window, WM_COMMAND, 0x0300'0002, 0); }, IDC_LABEL, "given", 2},
  };
  AddTestDialogs();
  for (const auto& row : cases) {
    person.steps = {[&](HWND window) {
      char text[100];
      GetDlgItemTextA(window, IDC_LABEL, text, sizeof text);
      EXPECT_EQ(text, row.shown);
      row.act(window);
    }};
    EXPECT_EQ(ShowButtonDialog(IDD_CHOICE, nullptr, "given", row.textControl, 0), row.result);
  }
  EXPECT_EQ(ShowButtonDialog(IDD_NO_TEMPLATE, nullptr, "given", 0, 0), 2u);
  EXPECT_EQ(person.boxes.size(), 1u);
}

TEST(Exceptions, SayWhatHappened) {
  const sehException& overflow = stackOverflowException;
  const Exception& memory = memoryException;
  EXPECT_EQ(overflow.message(), "Stack overflow");
  EXPECT_EQ(memory.message(), "Out of memory");
}

}  // namespace
}  // namespace nvsupport
