#include "ui/instance_subclasser.h"

namespace nvsupport {
namespace {

// A longer chain of records is damaged; a search ends there.
constexpr int longestChain = 1001;

SubclassRecord* HeadRecord(HWND window) {
  return reinterpret_cast<SubclassRecord*>(GetWindowLongPtrA(window, GWLP_USERDATA));
}
void SetHeadRecord(HWND window, SubclassRecord* record) {
  SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(record));
}

WNDPROC CurrentProc(HWND window) {
  return reinterpret_cast<WNDPROC>(GetWindowLongPtrA(window, GWLP_WNDPROC));
}
// Returns the procedure from before.
WNDPROC InstallProc(HWND window, WNDPROC procedure) {
  return reinterpret_cast<WNDPROC>(SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(procedure)));
}

}  // namespace

SubclassRecord* InstanceSubclasser::find(HWND window) const {
  SubclassRecord* record = HeadRecord(window);
  for (int compared = 0; record != nullptr && compared < longestChain; ++compared, record = record->next) {
    if (record->ownerProc == proc) return record;
  }
  return nullptr;
}

bool InstanceSubclasser::subclass(HWND window, Window* object) {
  if (SubclassRecord* const record = find(window)) {
    record->object = object;
    return false;
  }
  if (CurrentProc(window) == proc) return false;

  auto* const record = new SubclassRecord{proc, nullptr, object, HeadRecord(window)};
  record->previousProc = InstallProc(window, proc);
  SetHeadRecord(window, record);
  return true;
}

bool InstanceSubclasser::unsubclass(HWND window) {
  SubclassRecord* const record = find(window);
  if (record == nullptr) return false;

  SubclassRecord* before = HeadRecord(window);
  if (record == before) {
    InstallProc(window, record->previousProc);
    SetHeadRecord(window, record->next);
  } else {
    while (before->next != record) before = before->next;
    // The record in front must pass messages to this subclasser; otherwise removing the record would break the chain.
    if (before->previousProc != proc) return false;
    before->next = record->next;
    before->previousProc = record->previousProc;
  }
  delete record;
  return true;
}

LRESULT InstanceSubclasser::callPrevious(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const SubclassRecord* const record = find(window);
  if (record == nullptr) return 0;  // a handler destroyed the window while it handled this message
  const WNDPROC previous = record->previousProc;
  if (message == WM_DESTROY || message == WM_NCDESTROY) unsubclass(window);
  return CallWindowProcA(previous, window, message, wParam, lParam);
}

}  // namespace nvsupport
