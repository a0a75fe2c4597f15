// Modal dialogs and message boxes, from opening to end. The run of a dialog lives on the stack of DialogBoxParamA; runs
// that nest end from the inside out.
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

  // Calls what may call a handler, where no exception may pass: within the display's event loop, and while a window
  // goes. An exception ends the innermost run, and DialogBoxParamA throws it on once the display is left.
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
