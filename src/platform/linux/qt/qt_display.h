// The display that shows the dialogs with Qt Widgets. The process has one, which outlives the module that uses it.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_QT_DISPLAY_H
#define NVSUPPORT_PLATFORM_LINUX_QT_QT_DISPLAY_H

#include <map>
#include <memory>

#include "dialog_widget.h"
#include "windowing/display.h"
#include "x11_connection.h"

namespace windowing {

class QtDisplay final : public Display {
 public:
  QtDisplay() : x11(X11Connection::Open()) {}
  // Null when the module is being unloaded.
  void Use(DisplayEvents* coreEvents);

  void SetLanguage(const std::string& name) override;
  POINT BaseUnits() override;
  RECT ScreenArea() override;
  int ScreenOf(const RECT& place) override;
  RECT WorkArea(int screen) override;
  int CaptionHeight() override;
  int FrameWidth() override;

  bool CreateDialogWindow(const DialogView& dialog) override;
  void ShowDialogWindow(HWND dialog) override;
  void DestroyDialogWindow(HWND dialog) override;
  void RunModal(HWND dialog, const bool& ended) override;
  int RunMessageBox(const MessageBoxView& box) override;

  void SetText(HWND window, const std::string& text) override;
  void SetCheck(HWND checkBox, int state) override;
  void SetEnabled(HWND window, bool enabled) override;
  void SetFocus(HWND control, bool selectAll) override;
  void MoveControl(HWND control, const RECT& rectangle) override;
  void MoveDialogWindow(HWND dialog, POINT topLeft) override;
  RECT WindowRect(HWND dialog) override;
  POINT ClientOrigin(HWND dialog) override;
  std::optional<RECT> ForeignRect(std::uintptr_t window) override;
  std::uintptr_t ForeignTopLevel(std::uintptr_t window) override;

  void ShowWaiting(bool waiting) override;

 private:
  DialogWidget* Find(HWND dialog) const;
  DialogWidget* FindOwnerOf(HWND control) const;
  // The owner's icon, else the host's, else our own.
  QIcon IconUnder(HWND owner, std::uintptr_t foreignOwner) const;
  // The work area of the screen that the dialog opens on: the owner's, or without an owner the primary one.
  RECT WorkAreaFor(const DialogView& view);

  DisplayEvents* events = nullptr;
  const std::unique_ptr<X11Connection> x11;     // null when there is no X server
  std::map<HWND, DialogWidget*> dialogs;        // deleted by Retire
  std::map<HWND, DialogWidget*> controlOwners;  // by control
};

}  // namespace windowing

#endif
