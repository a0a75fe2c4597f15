// The library's own templates as compiled, and damaged ones.
#include "platform/linux/windowing/dialog_template.h"

#include <gtest/gtest.h>

#include "platform/platform.h"
#include "resources/resource_ids.h"

namespace {

using windowing::Bytes;

constexpr LONG_PTR tabStop = 0x10000;

Bytes OwnTemplate(WORD id) {
  return windowing::FindDialogTemplate(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(id));
}

TEST(DialogTemplates, HaveTheirControlsInTabOrder) {
  const struct {
    WORD id;
    const char* title;
    std::vector<int> tabOrder;
  } cases[] = {
      {IDD_CREATE_ACCOUNT,
       "Create an Online Account",
       {1001, 1003, 1005, 1007, 1009, 1012, 1014, 1019, 1, 2, 1030, 1041}},
      {IDD_SIGN_IN, "Sign in to Your Account", {1020, 1001, 1003, 1021, 1, 1029, 2, 1041}},
      {IDD_COMPUTER_NAME, "Give your Computer a Name", {1016, 1, 2, 1041}},
  };
  for (const auto& row : cases) {
    const auto dialog = windowing::ParseDialogTemplate(OwnTemplate(row.id));
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->title, row.title);
    std::vector<int> tabOrder;
    for (const auto& control : dialog->controls) {
      if ((control.style & tabStop) != 0) tabOrder.push_back(control.id);
    }
    EXPECT_EQ(tabOrder, row.tabOrder);
  }
}

TEST(DialogTemplates, AreRefusedWhenTruncatedAnywhere) {
  const Bytes whole = OwnTemplate(IDD_CREATE_ACCOUNT);
  for (std::size_t size = 0; size < whole.size(); ++size) {
    // A copy of exactly that size, so that a read behind its end is seen.
    const std::vector<unsigned char> front(&whole[0], &whole[size]);
    EXPECT_FALSE(windowing::ParseDialogTemplate(front)) << size;
    EXPECT_TRUE(windowing::FindDialogTemplateIn(front, IDD_CREATE_ACCOUNT).empty()) << "what is no script, of " << size;
  }
}

}  // namespace
