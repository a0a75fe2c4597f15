#include "modal_run.h"

#include <utility>

namespace user {
namespace {

ModalRun* innermost = nullptr;

}  // namespace

ModalRun::ModalRun() : outer(std::exchange(innermost, this)) {}

ModalRun::~ModalRun() {
  innermost = outer;
}

void ModalRun::FailInnermost(std::exception_ptr exception) {
  if (innermost == nullptr || innermost->failure) return;
  innermost->failure = std::move(exception);
  innermost->ended = true;
}

}  // namespace user
