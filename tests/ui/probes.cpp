#include "probes.h"

#include <cstdio>
#include <map>

namespace nvsupport {
namespace {

CoreProbe* opening = nullptr;  // has the next new window
std::map<HWND, CoreProbe*> probes;

std::string Describe(UINT message, WPARAM wParam) {
  static const std::map<UINT, std::string> names = {
      {WM_SETFONT, "SETFONT"},       {WM_INITDIALOG, "INITDIALOG"}, {WM_CLOSE, "CLOSE"},
      {WM_DESTROY, "DESTROY"},       {WM_NCDESTROY, "NCDESTROY"},   {WM_NEXTDLGCTL, "NEXTDLGCTL"},
      {WM_MOUSEWHEEL, "MOUSEWHEEL"}, {WM_MOVING, "MOVING"},         {WM_MOVE, "MOVE"},
  };
  char text[64];
  std::snprintf(text, sizeof text, "COMMAND %d %x", LOWORD(wParam), static_cast<unsigned>(HIWORD(wParam)));
  if (message == WM_COMMAND) return text;
  const auto name = names.find(message);
  return name != names.end() ? name->second : std::to_string(message);
}

}  // namespace

INT_PTR CoreProbe::Run(WORD id, HWND owner) {
  opening = this;
  return DialogBoxParamA(GetModuleHandleA(nullptr), MAKEINTRESOURCEA(id), owner, Procedure, 0);
}

INT_PTR CALLBACK CoreProbe::Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  CoreProbe& probe = *probes.try_emplace(dialog, opening).first->second;
  probe.dialog = dialog;
  probe.seen.push_back(Describe(message, wParam));
  return probe.react ? probe.react(dialog, message, wParam, lParam) : FALSE;
}

INT_PTR EndOnButton(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  if (message == WM_COMMAND && HIWORD(wParam) == 0) EndDialog(dialog, LOWORD(wParam));
  return message == WM_INITDIALOG;
}

}  // namespace nvsupport
