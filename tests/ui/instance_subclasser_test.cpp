// The chain of records that ties objects to windows.
#include <gtest/gtest.h>

#include <vector>

#include "probes.h"
#include "ui/instance_subclasser.h"

namespace nvsupport {
namespace {

WNDPROC ProcOf(HWND window) {
  return reinterpret_cast<WNDPROC>(GetWindowLongPtrA(window, GWLP_WNDPROC));
}
void SetProc(HWND window, WNDPROC procedure) {
  SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(procedure));
}
void SetChain(HWND window, SubclassRecord* head) {
  SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(head));
}

// Shared procedures that hand every message on to the one before, and their subclassers.
template <int number>
LRESULT CALLBACK PassOn(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
template <int number>
InstanceSubclasser subclasser{&PassOn<number>};
template <int number>
LRESULT CALLBACK PassOn(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return subclasser<number>.callPrevious(window, message, wParam, lParam);
}
InstanceSubclasser& first = subclasser<1>;
InstanceSubclasser& second = subclasser<2>;

LRESULT CALLBACK ForeignProc(HWND, UINT, WPARAM, LPARAM) {
  return 0;
}

// Runs a test on a live edit control.
void OnAnEdit(const std::function<void(HWND edit)>& test) {
  ProbeDialog dialog;
  Within(dialog, [&](HWND window) { test(GetDlgItem(window, IDC_EDIT)); });
}

TEST(InstanceSubclasser, MakesOneRecordForAWindow) {
  OnAnEdit([](HWND edit) {
    const WNDPROC original = ProcOf(edit);
    Window one;
    Window other;
    EXPECT_FALSE(first.unsubclass(edit));
    EXPECT_TRUE(first.subclass(edit, &one));
    EXPECT_FALSE(first.subclass(edit, &other)) << "the record that is there gets the new object";
    const SubclassRecord* record = first.find(edit);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->object, &other);
    EXPECT_EQ(record->next, nullptr);

    EXPECT_TRUE(first.unsubclass(edit));
    EXPECT_EQ(ProcOf(edit), original);
    EXPECT_EQ(first.find(edit), nullptr);

    SetProc(edit, &PassOn<1>);
    EXPECT_FALSE(first.subclass(edit, &one)) << "the procedure without a record";
    EXPECT_EQ(first.find(edit), nullptr);
    SetProc(edit, original);
  });
}

TEST(InstanceSubclasser, LetsTheFirstOfTwoLeaveUnlessAForeignProcedureStandsBetween) {
  for (const bool foreign : {false, true}) {
    OnAnEdit([foreign](HWND edit) {
      const WNDPROC original = ProcOf(edit);
      Window object;
      ASSERT_TRUE(first.subclass(edit, &object));
      if (foreign) SetProc(edit, &ForeignProc);
      ASSERT_TRUE(second.subclass(edit, &object));

      EXPECT_EQ(first.unsubclass(edit), !foreign);
      EXPECT_EQ(first.find(edit) != nullptr, foreign);
      EXPECT_EQ(ProcOf(edit), &PassOn<2>) << "the window's procedure stays that of the record in front";
      SetWindowTextA(edit, "through both");
      EXPECT_EQ(SendMessageA(edit, WM_GETTEXTLENGTH, 0, 0), foreign ? 0 : 12);
      EXPECT_TRUE(second.unsubclass(edit));
      EXPECT_EQ(ProcOf(edit), foreign ? &ForeignProc : original);
      first.unsubclass(edit);
    });
  }
}

TEST(InstanceSubclasser, SearchesAThousandAndOneRecordsAndNoFurther) {
  OnAnEdit([](HWND edit) {
    SubclassRecord wanted{&PassOn<1>, nullptr, nullptr, nullptr};
    std::vector<SubclassRecord> others(1001, {&ForeignProc, nullptr, nullptr, nullptr});
    for (std::size_t i = 0; i + 1 < others.size(); ++i) others[i].next = &others[i + 1];
    others.back().next = &wanted;
    SetChain(edit, &others[1]);
    EXPECT_EQ(first.find(edit), &wanted) << "the last of 1001";
    SetChain(edit, &others[0]);
    EXPECT_EQ(first.find(edit), nullptr) << "the last of 1002";
    SetChain(edit, nullptr);
  });
}

TEST(InstanceSubclasserDeathTest, EndsTheProcessOverAWindowWithoutObject) {
  EXPECT_EXIT(OnAnEdit([](HWND edit) { Window::wndProc(edit, WM_PAINT, 0, 0); }), ::testing::ExitedWithCode(1),
              "Window not found in Window::wndProc\n");
}

}  // namespace
}  // namespace nvsupport
