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

  // Runs the dialog until it ends: the value given to EndDialog, 2 for id 0, -1 if it could not be shown. 1 counts
  // as confirmed and everything else as not.
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

// Gives a control of a dialog the focus, an edit with its text selected. Nothing happens without such a control.
void FocusItem(HWND dialog, int id);

// The modules that hold the dialog templates: the library's own, as the loader named it, and the one of the dialogs
// with large ids; null until first needed, then kept.
extern HINSTANCE g_moduleHandle;
extern HINSTANCE resourceLibrary;
// The one that holds a template; null if it cannot be loaded.
HINSTANCE ResourceModuleFor(std::uint32_t id);

}  // namespace nvsupport

#endif
