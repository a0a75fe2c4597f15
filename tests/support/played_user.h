// A user for the headless display who plays prepared steps, one for each time that a dialog waits, and answers message
// boxes while noting what they said. In force during its life.
#ifndef NVSUPPORT_TESTS_SUPPORT_PLAYED_USER_H
#define NVSUPPORT_TESTS_SUPPORT_PLAYED_USER_H

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/user/headless_display.h"
#include "platform/platform.h"

class PlayedUser final : public user::HeadlessUser {
 public:
  using Step = std::function<void(HWND dialog)>;

  // What a step mostly does: fill an edit, push a button or tick a box, by the control's id.
  static Step Types(int id, std::string text) {
    return [id, text = std::move(text)](HWND dialog) { user::Type(Control(dialog, id), text); };
  }
  static Step Clicks(int id) {
    return [id](HWND dialog) { user::Click(Control(dialog, id)); };
  }

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
    const user::DialogView* const owner = user::ViewOf(box.owner);
    boxes.push_back(box);
    boxOwners.push_back(owner != nullptr ? owner->title : "");
    if (answers.empty()) return IDOK;
    const int answer = answers.front();
    answers.pop_front();
    return answer;
  }
  void OnStuck(HWND) override { ADD_FAILURE() << "a dialog was left open"; }

  std::deque<Step> steps;                   // what the user will do
  std::deque<int> answers;                  // buttons for the next message boxes; OK when there are no more
  std::vector<user::MessageBoxView> boxes;  // what the user was told
  std::vector<std::string> boxOwners;       // by the same index: title of the dialog that owned the box

 private:
  static HWND Control(HWND dialog, int id) {
    const HWND control = GetDlgItem(dialog, id);
    EXPECT_NE(control, nullptr) << "no control " << id;
    return control;
  }
};

#endif
