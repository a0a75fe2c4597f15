// A user for the headless display who plays prepared steps, one for each time that a dialog waits, and answers message
// boxes with OK while noting what they said. In force during its life.
#ifndef NVSUPPORT_TESTS_SUPPORT_PLAYED_USER_H
#define NVSUPPORT_TESTS_SUPPORT_PLAYED_USER_H

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <vector>

#include "platform/linux/user/headless_display.h"

class PlayedUser final : public user::HeadlessUser {
 public:
  using Step = std::function<void(HWND dialog)>;

  PlayedUser() { user::UseHeadlessDisplay(this); }
  PlayedUser(const PlayedUser&) = delete;
  PlayedUser& operator=(const PlayedUser&) = delete;
  ~PlayedUser() {
    user::UseHeadlessDisplay(nullptr);
    EXPECT_TRUE(steps.empty()) << steps.size() << " steps were not played";
  }

  void OnDialog(HWND dialog) override {
    if (steps.empty()) return;
    const Step step = std::move(steps.front());
    steps.pop_front();
    step(dialog);
  }
  int OnMessageBox(const user::MessageBoxView& box) override {
    boxes.push_back(box);
    return 1;
  }
  void OnStuck(HWND) override { ADD_FAILURE() << "a dialog was left open"; }

  std::deque<Step> steps;                   // what the user will do
  std::vector<user::MessageBoxView> boxes;  // what the user was told
};

#endif
