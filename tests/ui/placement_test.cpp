// Where dialogs open.
#include <gtest/gtest.h>

#include "probes.h"
#include "support/played_user.h"
#include "ui/placement.h"

namespace nvsupport {
namespace {

constexpr std::uintptr_t hostId = 0x4400001;
const HWND host = reinterpret_cast<HWND>(hostId);

RECT RectOf(HWND window) {
  RECT place{};
  GetWindowRect(window, &place);
  return place;
}

class Placement : public ::testing::Test {
 protected:
  Placement() { dialogPositions.clear(); }

  // Opens a dialog, drags it if `by` is not zero, closes it; returns where it opened.
  RECT Open(HWND owner, std::uint32_t id = IDD_PROBE, POINT by = {0, 0}) {
    RECT opened{};
    ProbeDialog dialog(id);
    person.steps = {[&](HWND window) {
      opened = RectOf(window);
      if (by.x != 0 || by.y != 0) headless::Drag(window, by);
      EndDialog(window, 1);
    }};
    EXPECT_EQ(dialog.run(owner), 1);
    EXPECT_EQ(dialog.moved, by.x != 0 || by.y != 0);
    return opened;
  }
  RECT OpenUnder(const RECT& owner, std::uint32_t id = IDD_PROBE, POINT by = {0, 0}) {
    headless::Screen().foreignWindows[hostId] = owner;
    return Open(host, id, by);
  }

  PlayedUser person;
};

TEST_F(Placement, CentresOnTheOwnerInsideTheWorkArea) {
  headless::Screen().workArea = {40, 30, 1280, 1000};
  headless::Screen().rightWorkArea = {1280, 0, 2560, 1024};
  const RECT centred = OpenUnder({100, 150, 1001, 801});
  const LONG width = centred.right - centred.left;
  const LONG height = centred.bottom - centred.top;
  const struct {
    const char* what;
    RECT owner;
    std::uint32_t id;
    POINT expected;
  } cases[] = {
      {"centred", {100, 150, 1001, 801}, IDD_PROBE, {100 + (901 - width) / 2, 150 + (651 - height) / 2}},
      {"frame and caption of a small owner stay in sight", {300, 300, 310, 310}, IDD_PROBE, {304, 322}},
      {"at the right and bottom", {1250, 990, 1270, 995}, IDD_PROBE, {1280 - width, 1000 - height}},
      {"beyond the left and top", {-900, -900, -850, -850}, IDD_PROBE, {40, 30}},
      {"on the screen of the owner",
       {1500, 300, 2500, 1000},
       IDD_PROBE,
       {1500 + (1000 - width) / 2, 300 + (700 - height) / 2}},
      {"at the right of that", {2500, 300, 2540, 340}, IDD_PROBE, {2560 - width, 322}},
      {"larger than the work area", {100, 150, 1001, 801}, IDD_HUGE, {40, 30}},
      {"without an owner on the whole screen", {}, IDD_PLAIN, {592, 482}},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.what);
    const RECT place = row.owner.right == 0 ? Open(nullptr, row.id) : OpenUnder(row.owner, row.id);
    EXPECT_EQ(place.left, row.expected.x);
    EXPECT_EQ(place.top, row.expected.y);
  }
}

TEST_F(Placement, ReopensWhereTheUserLeftIt) {
  const RECT opened = OpenUnder({100, 100, 700, 600}, IDD_PROBE, {37, -21});
  const auto expectAt = [&](const RECT& place, LONG x, LONG y) {
    EXPECT_EQ(place.left, opened.left + x);
    EXPECT_EQ(place.top, opened.top + y);
  };
  expectAt(OpenUnder({100, 100, 700, 600}), 37, -21);
  expectAt(OpenUnder({200, 150, 800, 650}), 137, 29);  // the owner moved, the offset stays
  expectAt(OpenUnder({100, 100, 700, 600}), 37, -21);  // openings without a drag changed nothing
  expectAt(OpenUnder({100, 100, 700, 600}, IDD_PROBE, {3, 4}), 37, -21);
  expectAt(OpenUnder({100, 100, 700, 600}), 40, -17);
  EXPECT_EQ(dialogPositions.size(), 1u) << "one entry for one dialog id";

  // A place that is off the screen by now.
  const RECT back = OpenUnder({1270, 1010, 1870, 1510});
  EXPECT_EQ(back.right, 1280);
  EXPECT_EQ(back.bottom, 1024);
}

TEST_F(Placement, KeepsAScreenPositionForADialogWithoutOwner) {
  const RECT opened = Open(nullptr, IDD_PROBE, {-50, 60});
  const RECT again = Open(nullptr);
  EXPECT_EQ(again.left, opened.left - 50);
  EXPECT_EQ(again.top, opened.top + 60);
  EXPECT_EQ(dialogPositions[IDD_PROBE].x, again.left);
  EXPECT_EQ(dialogPositions[IDD_PROBE].y, again.top);
}

}  // namespace
}  // namespace nvsupport
