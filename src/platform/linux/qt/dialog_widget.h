// The window of one dialog: shows what the core says and reports what the user does. It never ends by itself.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_DIALOG_WIDGET_H
#define NVSUPPORT_PLATFORM_LINUX_QT_DIALOG_WIDGET_H

#include <QDialog>
#include <QMargins>
#include <map>

#include "owner_window.h"
#include "scrolled_controls.h"
#include "windowing/display.h"

namespace windowing {

// Dialogs and message boxes are closed, not minimised or maximised.
constexpr Qt::WindowFlags dialogFlags =
    Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;

class DialogWidget final : public QDialog {
 public:
  // Reports events until Abandon or Retire. workArea: the size of its screen's work area; the dialog gets no larger.
  DialogWidget(const DialogView& view, DisplayEvents& coreEvents, QSize workArea);

  const std::map<HWND, QWidget*>& Controls() const { return controls; }
  void SetOwner(OwnerWindow ownerWindow);
  // `ended` becomes true when the core is done with the dialog; it lives until Retire.
  void SetRun(const bool& ended) { isEnded = &ended; }
  void ShowActive();
  // Reports nothing more. For a dialog that is still open when the library is unloaded at the end of the process: Qt or
  // its screen may be gone by then, and nothing else of the window is safe to touch.
  void Abandon();
  // Hides the window, ends the message boxes it owns, gives the input back to its owner, reports nothing more, and
  // deletes the object as soon as no report is under way.
  void Retire();

  // Draws at once the button whose command makes the thread wait, in the colours of a disabled one.
  void ShowWaiting(bool waiting);
  void FocusControl(HWND control, bool selectAll);
  // Moves the frame's top left corner there.
  void Place(QPoint topLeft);
  QRect FrameRectangle() const;
  QRect ClientRectangle() const;

  // The widths of the frame that the window manager puts around dialogs; assumed until a dialog has been shown.
  static QMargins Frame();

 protected:
  bool eventFilter(QObject* widget, QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;

 private:
  template <class What>
  void Report(What what);
  void Connect(const ControlView& view, QWidget& widget);
  void OnFocusIn(QWidget& widget);
  void PressEnter();
  void ReportLeftButton(const QMouseEvent& event, bool doubleClick);

  HWND handle;
  DisplayEvents* events;          // null once abandoned or retired
  const bool* isEnded = nullptr;  // null until the dialog runs
  OwnerWindow owner;
  std::map<HWND, QWidget*> controls;     // in template order, because handles count up
  ScrolledControls* scrolled = nullptr;  // in a dialog that is larger than its screen
  HWND focused = nullptr;                // the control that the core knows to have the focus
  bool placing = false;                  // while the program itself changes place or focus
  int reports = 0;                       // under way
  bool retired = false;
  QWidget* pressed = nullptr;  // the button whose command is under way
  QPoint framePlace;           // where the program wants the frame
  QPoint clientPlace;          // where the client area was last
};

}  // namespace windowing

#endif
