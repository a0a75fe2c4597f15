#include "ui/dialog.h"

#include "language/window_text.h"
#include "storage/format_text.h"
#include "ui/instance_subclasser.h"
#include "ui/placement.h"

namespace nvsupport {
namespace {

// Dialogs with this id or a larger one come from the resource library.
constexpr std::uint32_t firstResourceLibraryId = 5000;
constexpr INT_PTR dialogFailed = -1;

}  // namespace

HINSTANCE ResourceModuleFor(std::uint32_t id) {
  if (id < firstResourceLibraryId) {
    if (g_moduleHandle == nullptr) g_moduleHandle = GetModuleHandleA(nullptr);
    return g_moduleHandle;
  }
  if (resourceLibrary == nullptr) {
    resourceLibrary = LoadLibraryA("Res.dll");
    if (resourceLibrary == nullptr) {
      MessageBoxA(nullptr, "Failed to load Res.dll\nPlease re-install the software", "Error", MB_ICONERROR);
    }
  }
  return resourceLibrary;
}

void FocusItem(HWND dialog, int id) {
  const HWND control = GetDlgItem(dialog, id);
  if (control != nullptr) SendMessageA(dialog, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control), 1);
}

INT_PTR Dialog::onInitDialog(WPARAM, LPARAM) {
  return 1;
}

void Dialog::onOK() {
  EndDialog(hwnd, IDOK);
}

INT_PTR Dialog::onDialogMessage(UINT, WPARAM, LPARAM) {
  return 0;
}

void Dialog::onDialogCommand(int id, HWND, int) {
  if (id == IDOK) onOK();
  if (id == IDCANCEL) onCancel();
}

void Dialog::onDialogNotify(WPARAM, LPARAM) {}

void Dialog::onCancel() {
  EndDialog(hwnd, IDCANCEL);
}

void Dialog::onDestroy() {
  if (moved) RememberPosition(hwnd, dialogId);
}

INT_PTR Dialog::run(HWND parent) {
  if (dialogId == 0) return IDCANCEL;

  const INT_PTR result = DialogBoxParamA(ResourceModuleFor(dialogId), MAKEINTRESOURCEA(static_cast<WORD>(dialogId)),
                                         parent, &Dialog::dialogProc, reinterpret_cast<LPARAM>(this));
  if (result == dialogFailed) {
    const std::string text =
        FormatText("Dialog %d failed: err=0x%x", static_cast<int>(dialogId), static_cast<unsigned int>(GetLastError()));
    MessageBoxA(parent, text.c_str(), "Internal error", MB_ICONERROR);
  }
  return result;
}

INT_PTR CALLBACK Dialog::dialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    auto* const dialog = reinterpret_cast<Dialog*>(lParam);
    dialog->hwnd = window;
    windowSubclasser.subclass(window, dialog);
  }
  const SubclassRecord* const record = windowSubclasser.find(window);
  if (record == nullptr) return 0;
  return static_cast<Dialog*>(record->object)->dispatch(message, wParam, lParam);
}

INT_PTR Dialog::dispatch(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      // An embedded dialog stays where its parent puts it.
      if ((GetWindowLongPtrA(hwnd, GWL_STYLE) & WS_CHILD) == 0) PlaceDialog(hwnd, dialogId);
      TranslateWindowText(hwnd, 0);
      EnumChildWindows(hwnd, TranslateWindowText, 0);
      return onInitDialog(wParam, lParam);
    case WM_COMMAND:
      onDialogCommand(LOWORD(wParam), reinterpret_cast<HWND>(lParam), HIWORD(wParam));
      return 1;
    case WM_NOTIFY:
      onDialogNotify(wParam, lParam);
      return 1;
    case WM_MOUSEWHEEL:
      if (IsWindow(wheelTarget)) return SendMessageA(wheelTarget, message, wParam, lParam);
      break;
    case WM_MOVING:
      moved = true;
      break;
    default:
      break;
  }
  return onDialogMessage(message, wParam, lParam);
}

void Dialog::setItemText(int id, const std::string& text) {
  SetWindowTextA(GetDlgItem(hwnd, id), text.c_str());
}

void Dialog::setItemText(int id, const platform::SecretText& text) {
  SetWindowTextA(GetDlgItem(hwnd, id), text.c_str());
}

std::string Dialog::getItemText(int id) const {
  return std::string(getSecretText(id).view());
}

platform::SecretText Dialog::getSecretText(int id) const {
  const auto length = static_cast<std::size_t>(SendDlgItemMessageA(hwnd, id, WM_GETTEXTLENGTH, 0, 0));
  platform::SecretText text;
  text.Fill(length + 1,
            [&](char* buffer, std::size_t room) { return GetDlgItemTextA(hwnd, id, buffer, static_cast<int>(room)); });
  return text;
}

bool Dialog::isChecked(int id) const {
  return SendDlgItemMessageA(hwnd, id, BM_GETCHECK, 0, 0) != 0;
}

}  // namespace nvsupport
