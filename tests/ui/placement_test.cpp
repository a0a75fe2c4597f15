// Where dialogs open.
#include "ui/placement.h"

#include <gtest/gtest.h>

#include "resources/resource_ids.h"
#include "support/played_user.h"
#include "ui/dialog.h"

namespace nvsupport {
namespace {

class Placement : public ::testing::Test {
 protected:
  Placement() { dialogPositions.clear(); }

  // Opens a dialog under an owner, if there is one, drags it and closes it; returns where it opened.
  RECT Open(const RECT& owner, POINT by = {0, 0}) {
    constexpr std::uintptr_t hostId = 0x4400001;
    person.foreignWindows[hostId] = owner;
    RECT opened{};
    person.steps = {[&](HWND window) {
      GetWindowRect(window, &opened);
      if (by.x != 0) person.Drag(window, by);
      EndDialog(window, 1);
    }};
    Dialog(IDD_COMPUTER_NAME).run(owner.right != 0 ? reinterpret_cast<HWND>(hostId) : nullptr);
    return opened;
  }

  PlayedUser person;
  const RECT usualOwner{100, 150, 1001, 801};
};

TEST_F(Placement, CentresOnTheOwnerInsideTheWorkArea) {
  person.workArea = {40, 30, 1280, 1000};
  const RECT centred = Open(usualOwner);
  const LONG width = centred.right - centred.left;
  const LONG height = centred.bottom - centred.top;
  const struct {
    const char* what;
    RECT owner;
    POINT expected;
  } cases[] = {
      {"centred", usualOwner, {100 + (901 - width) / 2, 150 + (651 - height) / 2}},
      {"frame and caption of a small owner stay in sight", {300, 300, 310, 310}, {304, 322}},
      {"at the right and bottom", {1250, 990, 1270, 995}, {1280 - width, 1000 - height}},
      {"beyond the left and top", {-900, -900, -850, -850}, {40, 30}},
      {"without an owner on the whole screen", {}, {(1280 - width) / 2, (1024 - height) / 2}},
  };
  for (const auto& row : cases) {
    const RECT place = Open(row.owner);
    EXPECT_EQ(place.left, row.expected.x) << row.what;
    EXPECT_EQ(place.top, row.expected.y) << row.what;
  }
}

TEST_F(Placement, KeepsThePlaceUnderADialogThatMoved) {
  std::vector<POINT> offsets;
  const auto openInner = [&](HWND outer, POINT by) {
    person.steps.push_front([=, &offsets, this](HWND inner) {
      RECT owner{};
      RECT place{};
      GetWindowRect(outer, &owner);
      GetWindowRect(inner, &place);
      offsets.push_back({place.left - owner.left, place.top - owner.top});
      person.Drag(inner, by);
      EndDialog(inner, 1);
    });
    Dialog(IDD_COMPUTER_NAME).run(outer);
  };
  person.steps = {[&](HWND outer) {
    openInner(outer, {11, 13});
    person.Drag(outer, {-90, 70});
    openInner(outer, {0, 0});
    EndDialog(outer, 1);
  }};
  Dialog(IDD_SIGN_IN).run(nullptr);
  EXPECT_EQ(offsets[1].x, offsets[0].x + 11);
  EXPECT_EQ(offsets[1].y, offsets[0].y + 13);
}

TEST_F(Placement, ReopensWhereTheUserLeftIt) {
  const RECT opened = Open(usualOwner, {37, -21});
  const struct {
    const char* what;
    RECT owner;
    POINT drag;   // after it opened
    POINT place;  // moved by
  } runs[] = {
      {"where it was left", usualOwner, {0, 0}, {37, -21}},
      {"the owner moved, the offset stays", {200, 200, 1101, 851}, {3, 4}, {137, 29}},
      {"a drag adds to the one before", usualOwner, {0, 0}, {40, -17}},
      {"a place off the screen", {1270, 0, 1870, 500}, {0, 0}, {1280 - opened.right, -167}},
  };
  for (const auto& run : runs) {
    const RECT place = Open(run.owner, run.drag);
    EXPECT_EQ(place.left, opened.left + run.place.x) << run.what;
    EXPECT_EQ(place.top, opened.top + run.place.y) << run.what;
  }
  const RECT ownerless = Open({}, {-50, 60});
  EXPECT_EQ(Open({}).left, ownerless.left - 50) << "on the screen itself";
}

}  // namespace
}  // namespace nvsupport
