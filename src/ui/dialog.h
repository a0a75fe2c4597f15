// The base of all dialogs: a modal run of a dialog template, placed and translated as it opens. An object lives on
// its caller's stack and is run once.
#ifndef NVSUPPORT_UI_DIALOG_H
#define NVSUPPORT_UI_DIALOG_H

#include <cstdint>
#include <string>

#include "ui/window.h"

namespace nvsupport {

class Dialog : public Window {
 public:
  // id: resource id of the template; 0 stands for none.
  explicit Dialog(std::uint32_t id) : dialogId(id) {}

  virtual INT_PTR onInitDialog(WPARAM wParam, LPARAM lParam);
  virtual void onOK();
  virtual INT_PTR onDialogMessage(UINT message, WPARAM wParam, LPARAM lParam);
  virtual void onDialogCommand(int id, HWND control, int code);
  virtual void onDialogNotify(WPARAM wParam, LPARAM lParam);
  virtual void onCancel();

  void onDestroy() override;

  // Runs the dialog until it ends. Returns the value given to EndDialog, 2 for id 0, or -1 if the dialog could not be
  // shown. Callers take 1 as confirmed and everything else as not.
  INT_PTR run(HWND parent);

 protected:
  void setItemText(int id, const std::string& text);
  void setItemText(int id, const platform::SecretText& text);
  std::string getItemText(int id) const;
  platform::SecretText getSecretText(int id) const;
  // True for any state but unchecked.
  bool isChecked(int id) const;
  INT_PTR dispatch(UINT message, WPARAM wParam, LPARAM lParam);

  HWND wheelTarget = nullptr;  // receives the dialog's mouse wheel messages
  bool moved = false;          // the user has dragged the dialog since it opened

 private:
  static INT_PTR CALLBACK dialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  std::uint32_t dialogId;
};

// Gives a control of a dialog the focus, and selects the text of an edit. Does nothing if there is no such control.
void FocusItem(HWND dialog, int id);

// The modules that hold the dialog templates: the library itself, as the loader named it, and the resource library for
// dialogs with large ids, which is null until it is first needed and then stays loaded.
extern HINSTANCE g_moduleHandle;
extern HINSTANCE resourceLibrary;
// The module that holds this template; null if it cannot be loaded.
HINSTANCE ResourceModuleFor(std::uint32_t id);

}  // namespace nvsupport

#endif
