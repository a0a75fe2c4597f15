// The library's own templates as compiled, and damaged ones.
#include "platform/linux/user/dialog_template.h"

#include <gtest/gtest.h>

#include "platform/platform.h"
#include "resources/resource_ids.h"

namespace {

using Script = std::vector<unsigned char>;
using user::Bytes;

constexpr LONG_PTR tabStop = 0x10000;

Bytes OwnTemplate(WORD id) {
  return user::FindDialogTemplate(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(id));
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
    const auto dialog = user::ParseDialogTemplate(OwnTemplate(row.id));
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->title, row.title);
    std::vector<int> tabOrder;
    for (const auto& control : dialog->controls) {
      if ((control.style & tabStop) != 0) tabOrder.push_back(control.id);
    }
    EXPECT_EQ(tabOrder, row.tabOrder);
  }
}

// A script of one template, as a resource compiler writes it.
Script ScriptWith(Bytes dialog, unsigned char id) {
  Script script = {0, 0, 0, 0, 32, 0, 0, 0, 0xFF, 0xFF, 0, 0, 0xFF, 0xFF, 0, 0};
  script.resize(32);
  script.insert(script.end(),
                {static_cast<unsigned char>(dialog.size()), static_cast<unsigned char>(dialog.size() >> 8), 0, 0, 32, 0,
                 0, 0, 0xFF, 0xFF, 5, 0, 0xFF, 0xFF, id, 0});
  script.resize(64);
  script.insert(script.end(), dialog.begin(), dialog.end());
  return script;
}

TEST(DialogTemplates, AreRefusedWhenTruncatedAnywhere) {
  const Bytes whole = OwnTemplate(IDD_CREATE_ACCOUNT);
  const Script script = ScriptWith(whole, 104);
  EXPECT_EQ(user::FindDialogTemplateIn(script, 104).size(), whole.size());
  EXPECT_TRUE(user::FindDialogTemplateIn(script, 105).empty());
  // A copy of exactly that size, so that a read behind its end is seen.
  const auto front = [](Bytes bytes, std::size_t size) { return Script(&bytes[0], &bytes[size]); };
  for (std::size_t size = 0; size < script.size(); ++size) {
    EXPECT_TRUE(user::FindDialogTemplateIn(front(script, size), 104).empty()) << size;
  }
  for (std::size_t size = 0; size < whole.size(); ++size) {
    EXPECT_FALSE(user::ParseDialogTemplate(front(whole, size))) << size;
  }
}

TEST(DialogTemplates, StayInBoundsWhateverAByteIsChangedTo) {
  const Script script = ScriptWith(OwnTemplate(IDD_COMPUTER_NAME), 104);
  std::size_t read = 0;
  for (std::size_t at = 0; at < script.size(); ++at) {
    for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
      Script copy = script;
      copy[at] = static_cast<unsigned char>(value);
      const auto dialog = user::ParseDialogTemplate(user::FindDialogTemplateIn(copy, 104));
      if (dialog) read += dialog->controls.size();
    }
  }
  EXPECT_GT(read, 0u);
}

}  // namespace
