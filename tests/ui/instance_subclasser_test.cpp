// The chain of records that ties objects to windows.
#include <gtest/gtest.h>

#include <vector>

#include "probes.h"
#include "support/played_user.h"
#include "ui/instance_subclasser.h"

namespace nvsupport {
namespace {

WNDPROC ProcOf(HWND window) {
  return reinterpret_cast<WNDPROC>(GetWindowLongPtrA(window, GWLP_WNDPROC));
}
void SetProc(HWND window, WNDPROC procedure) {
  SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(procedure));
}
LONG_PTR ChainOf(HWND window) {
  return GetWindowLongPtrA(window, GWLP_USERDATA);
}
void SetChain(HWND window, SubclassRecord* head) {
  SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(head));
}

// Shared procedures that hand every message on to the one before.
extern InstanceSubclasser first;
extern InstanceSubclasser second;
LRESULT CALLBACK FirstProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return first.callPrevious(window, message, wParam, lParam);
}
LRESULT CALLBACK SecondProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return second.callPrevious(window, message, wParam, lParam);
}
LRESULT CALLBACK ForeignProc(HWND, UINT, WPARAM, LPARAM) {
  return 0;
}
InstanceSubclasser first{&FirstProc};
InstanceSubclasser second{&SecondProc};

// Runs a test on a live edit control.
void OnAnEdit(const std::function<void(HWND edit)>& test) {
  PlayedUser person;
  ProbeDialog dialog;
  person.steps = {[&](HWND window) {
    test(GetDlgItem(window, IDC_EDIT));
    EndDialog(window, 1);
  }};
  dialog.run(nullptr);
}

TEST(InstanceSubclasser, MakesOneRecordForAWindow) {
  OnAnEdit([](HWND edit) {
    const WNDPROC original = ProcOf(edit);
    Window one;
    Window other;
    EXPECT_FALSE(first.unsubclass(edit));
    EXPECT_EQ(first.find(edit), nullptr);

    EXPECT_TRUE(first.subclass(edit, &one));
    EXPECT_FALSE(first.subclass(edit, &other)) << "the record that is there gets the new object";
    ASSERT_NE(first.find(edit), nullptr);
    EXPECT_EQ(first.find(edit)->object, &other);
    EXPECT_EQ(first.find(edit)->next, nullptr);
    EXPECT_EQ(first.find(edit)->previousProc, original);

    EXPECT_TRUE(first.unsubclass(edit));
    EXPECT_EQ(ProcOf(edit), original);
    EXPECT_EQ(ChainOf(edit), 0);
    EXPECT_FALSE(first.unsubclass(edit));

    SetProc(edit, &FirstProc);
    EXPECT_FALSE(first.subclass(edit, &one)) << "the procedure without a record";
    EXPECT_EQ(ChainOf(edit), 0);
    SetProc(edit, original);
  });
}

TEST(InstanceSubclasser, LetsTheFirstOfTwoLeaveFromBehindTheSecond) {
  OnAnEdit([](HWND edit) {
    const WNDPROC original = ProcOf(edit);
    Window object;
    ASSERT_TRUE(first.subclass(edit, &object));
    ASSERT_TRUE(second.subclass(edit, &object));
    SetWindowTextA(edit, "through both");
    EXPECT_EQ(SendMessageA(edit, WM_GETTEXTLENGTH, 0, 0), 12);

    EXPECT_TRUE(first.unsubclass(edit));
    EXPECT_EQ(ProcOf(edit), &SecondProc) << "the window's procedure stays that of the record in front";
    EXPECT_EQ(second.find(edit)->previousProc, original);
    EXPECT_EQ(SendMessageA(edit, WM_GETTEXTLENGTH, 0, 0), 12);
    EXPECT_TRUE(second.unsubclass(edit));
    EXPECT_EQ(ProcOf(edit), original);
  });
}

TEST(InstanceSubclasser, KeepsARecordThatAForeignProcedureStandsBefore) {
  OnAnEdit([](HWND edit) {
    Window object;
    ASSERT_TRUE(first.subclass(edit, &object));
    SetProc(edit, &ForeignProc);
    ASSERT_TRUE(second.subclass(edit, &object));
    EXPECT_FALSE(first.unsubclass(edit));
    EXPECT_NE(first.find(edit), nullptr);
    EXPECT_EQ(second.find(edit)->previousProc, &ForeignProc);

    ASSERT_TRUE(second.unsubclass(edit));
    EXPECT_EQ(ProcOf(edit), &ForeignProc);
    ASSERT_TRUE(first.unsubclass(edit));
  });
}

TEST(InstanceSubclasser, SearchesAThousandAndOneRecordsAndNoFurther) {
  OnAnEdit([](HWND edit) {
    SubclassRecord wanted{&FirstProc, nullptr, nullptr, nullptr};
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
