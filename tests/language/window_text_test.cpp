#include "language/window_text.h"

#include <gtest/gtest.h>

#include "language/translation_catalogue.h"
#include "resources/resource_ids.h"
#include "support/played_user.h"
#include "support/temporary_home.h"

namespace nvsupport {
namespace {

int textsSet = 0;
WNDPROC editProcedure = nullptr;

LRESULT CALLBACK CountTextsSet(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_SETTEXT) ++textsSet;
  return CallWindowProcA(editProcedure, window, message, wParam, lParam);
}

INT_PTR CALLBACK PlainDialog(HWND, UINT, WPARAM, LPARAM) {
  return 0;
}

TEST(WindowText, IsSetOnlyWhereTheCatalogueHasAnother) {
  const testing::TemporaryHome home;
  const std::string longest(4999, 'a');
  testing::WriteWholeFile(home.folder / "texts.txt", longest + "\tshort\nOK\tOK\n&Help\tHilfe\n\"\tempty\n");
  ASSERT_TRUE(translations.LoadCatalogueFile(home.folder / "texts.txt"));

  PlayedUser user;
  user.steps.push_back([&](HWND dialog) {
    const HWND edit = GetDlgItem(dialog, IDC_COMPUTER_NAME);
    editProcedure =
        reinterpret_cast<WNDPROC>(SetWindowLongPtrA(edit, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&CountTextsSet)));
    const struct {
      std::string text;
      std::string shown;
    } cases[] = {
        {"", ""},           {"OK", "OK"},       {"unknown", "unknown"},
        {"&Help", "Hilfe"}, {longest, "short"}, {longest + "and more", "short"},
    };
    for (const auto& item : cases) {
      SetWindowTextA(edit, item.text.c_str());
      textsSet = 0;
      EXPECT_EQ(TranslateWindowText(edit, 0), 1);
      EXPECT_EQ(textsSet, item.text == item.shown ? 0 : 1) << item.text;
      char shown[100] = {};
      GetWindowTextA(edit, shown, sizeof shown);
      EXPECT_EQ(shown, item.shown);
    }
    EndDialog(dialog, 7);
  });
  EXPECT_EQ(DialogBoxParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDD_COMPUTER_NAME), nullptr, &PlainDialog, 0),
            7);
  translations.WriteMissFile();  // empties the catalogue
}

}  // namespace
}  // namespace nvsupport
