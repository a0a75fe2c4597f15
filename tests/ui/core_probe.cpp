#include "core_probe.h"

#include <map>

#include "platform/linux/user/resources.h"

extern "C" const unsigned char core_dialogs_begin[];
extern "C" const unsigned char core_dialogs_end[];

namespace {

[[maybe_unused]] const bool resourcesAdded =
    (user::AddResources(GetModuleHandleA(nullptr), user::Bytes(core_dialogs_begin, core_dialogs_end)), true);

// Open dialogs, the newest last: messages before WM_INITDIALOG are its.
std::vector<CoreProbe*> running;

std::string Describe(UINT message, WPARAM wParam) {
  static const std::map<UINT, std::string> names = {
      {WM_SETFONT, "SETFONT"},       {WM_INITDIALOG, "INITDIALOG"}, {WM_CLOSE, "CLOSE"},
      {WM_DESTROY, "DESTROY"},       {WM_NCDESTROY, "NCDESTROY"},   {WM_NEXTDLGCTL, "NEXTDLGCTL"},
      {WM_MOUSEWHEEL, "MOUSEWHEEL"}, {WM_MOVING, "MOVING"},         {WM_MOVE, "MOVE"},
  };
  char text[64];
  if (message == WM_COMMAND) {
    std::snprintf(text, sizeof text, "COMMAND %d %x", LOWORD(wParam), static_cast<unsigned>(HIWORD(wParam)));
    return text;
  }
  const auto name = names.find(message);
  if (name != names.end()) return name->second;
  std::snprintf(text, sizeof text, "%x", message);
  return text;
}

}  // namespace

INT_PTR CoreProbe::Run(WORD id, HWND owner) {
  const struct Running {
    explicit Running(CoreProbe* probe) { running.push_back(probe); }
    ~Running() { running.pop_back(); }
  } whileRunning(this);
  return DialogBoxParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(id), owner, Procedure,
                         reinterpret_cast<LPARAM>(this));
}

INT_PTR CALLBACK CoreProbe::Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  CoreProbe* probe = running.back();
  for (CoreProbe* candidate : running) {
    if (candidate->dialog == dialog) probe = candidate;
  }
  probe->dialog = dialog;
  probe->seen.push_back(Describe(message, wParam));
  return probe->react ? probe->react(dialog, message, wParam, lParam) : FALSE;
}

INT_PTR EndOnButton(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  if (message == WM_COMMAND && HIWORD(wParam) == 0) EndDialog(dialog, LOWORD(wParam));
  return message == WM_INITDIALOG;
}
