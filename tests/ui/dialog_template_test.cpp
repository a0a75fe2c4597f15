// The library's own templates as compiled, and damaged ones.
#include "platform/linux/user/dialog_template.h"

#include <gtest/gtest.h>

#include <memory>

#include "platform/platform.h"
#include "resources/resource_ids.h"

namespace {

using user::Bytes;

constexpr LONG_PTR tabStop = 0x10000;
constexpr WORD ownIds[] = {IDD_CREATE_ACCOUNT, IDD_SIGN_IN, IDD_COMPUTER_NAME};

Bytes OwnTemplate(WORD id) {
  return user::FindDialogTemplate(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(id));
}

TEST(DialogTemplates, HaveTheirControlsInTabOrder) {
  const struct {
    WORD id;
    const char* title;
    std::vector<int> size;
    std::size_t controls;
    std::vector<int> tabOrder;
  } cases[] = {
      {IDD_CREATE_ACCOUNT,
       "Create an Online Account",
       {281, 215},
       21,
       {1001, 1003, 1005, 1007, 1009, 1012, 1014, 1019, 1, 2, 1030, 1041}},
      {IDD_SIGN_IN, "Sign in to Your Account", {295, 162}, 13, {1020, 1001, 1003, 1021, 1, 1029, 2, 1041}},
      {IDD_COMPUTER_NAME, "Give your Computer a Name", {286, 105}, 6, {1016, 1, 2, 1041}},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.id);
    const auto dialog = user::ParseDialogTemplate(OwnTemplate(row.id));
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->title, row.title);
    EXPECT_EQ((std::vector<int>{dialog->place.width, dialog->place.height}), row.size);
    EXPECT_EQ(dialog->controls.size(), row.controls);
    std::vector<int> tabOrder;
    for (const auto& control : dialog->controls) {
      if ((control.style & tabStop) != 0) tabOrder.push_back(control.id);
    }
    EXPECT_EQ(tabOrder, row.tabOrder);
  }
}

// Each edit's name for accessibility tools is the label before it.
TEST(DialogTemplates, NameEveryEditByTheLabelBeforeIt) {
  for (const WORD id : ownIds) {
    const auto dialog = user::ParseDialogTemplate(OwnTemplate(id));
    ASSERT_TRUE(dialog);
    for (std::size_t i = 0; i < dialog->controls.size(); ++i) {
      const auto& control = dialog->controls[i];
      if (control.kind != user::ControlKind::edit) continue;
      ASSERT_GT(i, 0u);
      const auto& label = dialog->controls[i - 1];
      EXPECT_EQ(label.kind, user::ControlKind::label);
      EXPECT_EQ(label.place.y, control.place.y + 3) << label.text;
      EXPECT_EQ((control.style & 0x20) != 0, label.text.find("assword") != std::string::npos) << label.text;
    }
  }
}

// A copy of exactly that size, so that a read behind its end is seen.
std::unique_ptr<unsigned char[]> Copy(Bytes bytes) {
  auto copy = std::make_unique<unsigned char[]>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), copy.get());
  return copy;
}

TEST(DialogTemplates, AreRefusedWhenTruncatedAnywhere) {
  for (const WORD id : ownIds) {
    const Bytes whole = OwnTemplate(id);
    for (std::size_t size = 0; size < whole.size(); ++size) {
      const auto copy = Copy(whole.first(size));
      EXPECT_FALSE(user::ParseDialogTemplate(Bytes(copy.get(), size))) << id << " cut to " << size;
    }
  }
}

// A script of one template, as a resource compiler writes it.
std::vector<unsigned char> ScriptWith(Bytes dialog, unsigned char id) {
  std::vector<unsigned char> script = {0, 0, 0, 0, 32, 0, 0, 0, 0xFF, 0xFF, 0, 0, 0xFF, 0xFF, 0, 0};
  script.resize(32);
  const auto size = static_cast<unsigned>(dialog.size());
  for (unsigned shift = 0; shift < 32; shift += 8) script.push_back(static_cast<unsigned char>(size >> shift));
  script.insert(script.end(), {32, 0, 0, 0, 0xFF, 0xFF, 5, 0, 0xFF, 0xFF, id, 0});
  script.resize(64);
  script.insert(script.end(), dialog.begin(), dialog.end());
  return script;
}

TEST(DialogTemplates, AreFoundInWholeScriptsAlone) {
  const Bytes dialog = OwnTemplate(IDD_COMPUTER_NAME);
  const std::vector<unsigned char> script = ScriptWith(dialog, 104);
  EXPECT_EQ(user::FindDialogTemplateIn(script, 104).size(), dialog.size());
  EXPECT_TRUE(user::FindDialogTemplateIn(script, 105).empty());
  for (std::size_t size = 0; size < script.size(); ++size) {
    const auto copy = Copy(Bytes(script).first(size));
    EXPECT_TRUE(user::FindDialogTemplateIn(Bytes(copy.get(), size), 104).empty()) << size;
  }
}

TEST(DialogTemplates, StayInBoundsWhateverAByteIsChangedTo) {
  const std::vector<unsigned char> script = ScriptWith(OwnTemplate(IDD_COMPUTER_NAME), 104);
  std::size_t read = 0;
  for (std::size_t at = 0; at < script.size(); ++at) {
    for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
      const auto copy = Copy(script);
      copy[at] = static_cast<unsigned char>(value);
      const auto dialog = user::ParseDialogTemplate(user::FindDialogTemplateIn(Bytes(copy.get(), script.size()), 104));
      if (dialog) read += dialog->controls.size();
    }
  }
  EXPECT_GT(read, 0u);
}

}  // namespace
