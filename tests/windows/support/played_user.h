// The user before the system's own dialogs: does the prepared steps as long as the object lives, one each time that a
// dialog of this thread waits.
#pragma once
#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/platform.h"

class PlayedUser {
 public:
  using Step = std::function<void(HWND dialog)>;

  PlayedUser() { present = this; }
  ~PlayedUser() {
    KillTimer(nullptr, timer);
    EXPECT_TRUE(steps.empty()) << steps.size() << " steps were not played";
  }

  std::deque<Step> steps;
  // The system shows its message boxes itself; no test that looks at them runs here.
  struct Box {
    std::string caption, text;
    UINT type;
    std::uintptr_t foreignOwner;
  };
  std::vector<Box> boxes;
  std::map<std::uintptr_t, RECT> foreignWindows;

 private:
  static void CALLBACK OnTimer(HWND, UINT, UINT_PTR, DWORD) {
    const HWND dialog = FindWindowA(MAKEINTRESOURCEA(32770), nullptr);
    if (dialog == nullptr || present->steps.empty()) return;
    const Step step = present->steps.front();
    present->steps.pop_front();
    step(dialog);
  }

  inline static PlayedUser* present = nullptr;
  UINT_PTR timer = SetTimer(nullptr, 0, USER_TIMER_MINIMUM, OnTimer);
};
