// Damaged dialog templates.
#include "platform/linux/windowing/dialog_template.h"

#include <gtest/gtest.h>

#include "platform/platform.h"
#include "resources/resource_ids.h"

namespace {

using windowing::Bytes;

TEST(DialogTemplates, AreRefusedWhenTruncatedAnywhere) {
  const Bytes whole = windowing::FindDialogTemplate(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(IDD_CREATE_ACCOUNT));
  ASSERT_TRUE(windowing::ParseDialogTemplate(whole));
  for (std::size_t size = 0; size < whole.size(); ++size) {
    // A copy of exactly that size, so that a read behind its end is seen.
    const std::vector<unsigned char> front(&whole[0], &whole[size]);
    EXPECT_FALSE(windowing::ParseDialogTemplate(front)) << size;
    EXPECT_TRUE(windowing::FindDialogTemplateIn(front, IDD_CREATE_ACCOUNT).empty()) << "what is no script, of " << size;
  }
}

}  // namespace
