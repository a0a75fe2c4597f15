// Modal dialogs and message boxes, from opening to end. DialogBoxParamA keeps the run of its dialog on its stack, so of
// nested runs the innermost ends first.
#ifndef NVSUPPORT_PLATFORM_LINUX_WINDOWING_MODAL_DIALOGS_H
#define NVSUPPORT_PLATFORM_LINUX_WINDOWING_MODAL_DIALOGS_H

#include <exception>

#include "../types.h"

namespace windowing {

class ModalRun {
 public:
  ModalRun();
  ~ModalRun();
  ModalRun(const ModalRun&) = delete;
  ModalRun& operator=(const ModalRun&) = delete;

  // Calls a function that may call a handler, in a place that no exception may leave: within the display's event loop,
  // and while a window is destroyed. An exception ends the innermost run; DialogBoxParamA throws it again afterwards.
  template <typename Action>
  static void Contain(Action action) {
    try {
      action();
    } catch (...) {
      FailInnermost(std::current_exception());
    }
  }

  bool ended = false;
  INT_PTR result = 0;
  std::exception_ptr failure;  // the first one of a handler

 private:
  static void FailInnermost(std::exception_ptr exception);

  ModalRun* const outer;
};

}  // namespace windowing

#endif
