#include "qt_display.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QCursor>
#include <QEventLoop>
#include <QFontMetrics>
#include <QMessageBox>
#include <QPointer>
#include <QScreen>

#include "control_widgets.h"
#include "windowing/windowing.h"

namespace windowing {
namespace {

RECT ToRect(const QRect& r) {
  return {r.left(), r.top(), r.left() + r.width(), r.top() + r.height()};
}

// Pixels of the device to Qt's, which keep each screen's origin.
QRect FromDevicePixels(const QRect& device) {
  const QScreen* found = QGuiApplication::primaryScreen();
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QRect place = screen->geometry();
    if (QRect(place.topLeft(), place.size() * screen->devicePixelRatio()).contains(device.center())) found = screen;
  }
  if (found == nullptr) return device;
  const double ratio = found->devicePixelRatio();
  const QPoint origin = found->geometry().topLeft();
  return {origin + (device.topLeft() - origin) / ratio, device.size() / ratio};
}

QMessageBox::Icon IconOf(UINT type) {
  if ((type & MB_ICONERROR) != 0) return QMessageBox::Critical;
  return (type & MB_ICONINFORMATION) != 0 ? QMessageBox::Information : QMessageBox::NoIcon;
}

}  // namespace

void QtDisplay::Use(DisplayEvents* coreEvents) {
  if (events == coreEvents) return;
  for (const auto& [handle, dialog] : std::exchange(dialogs, {})) dialog->Abandon();
  controlOwners.clear();
  events = coreEvents;
}

// The width is rounded up: templates are laid out for a font that is narrow for its height, and Qt's usual ones are
// wide.
POINT QtDisplay::BaseUnits() {
  const QFontMetrics font(QApplication::font());
  const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
  const int count = static_cast<int>(letters.size());
  return {(font.horizontalAdvance(letters) + count - 1) / count, font.height()};
}

RECT QtDisplay::ScreenArea() {
  const QScreen* screen = QGuiApplication::primaryScreen();
  return screen != nullptr ? ToRect(screen->geometry()) : RECT{};
}

RECT QtDisplay::WorkArea() {
  const QScreen* screen = QGuiApplication::primaryScreen();
  return screen != nullptr ? ToRect(screen->availableGeometry()) : RECT{};
}

int QtDisplay::CaptionHeight() {
  return DialogWidget::Frame().top() - FrameWidth();
}

int QtDisplay::FrameWidth() {
  return DialogWidget::Frame().left();
}

DialogWidget* QtDisplay::Find(HWND dialog) const {
  const auto found = dialogs.find(dialog);
  return found != dialogs.end() ? found->second : nullptr;
}

DialogWidget* QtDisplay::FindOwnerOf(HWND control) const {
  const auto found = controlOwners.find(control);
  return found != controlOwners.end() ? found->second : nullptr;
}

bool QtDisplay::CreateDialogWindow(const DialogView& view) {
  if (events == nullptr) return false;
  auto* dialog = new DialogWidget(view, *events);
  dialog->SetOwner(OwnerOf(Find(view.owner), view.foreignOwner, x11.get()));
  dialogs[view.handle] = dialog;
  for (const ControlView& control : view.controls) controlOwners[control.handle] = dialog;
  return true;
}

void QtDisplay::ShowDialogWindow(HWND dialog) {
  if (DialogWidget* window = Find(dialog)) window->ShowActive();
}

void QtDisplay::DestroyDialogWindow(HWND dialog) {
  DialogWidget* window = Find(dialog);
  if (window == nullptr) return;
  dialogs.erase(dialog);
  std::erase_if(controlOwners, [window](const auto& entry) { return entry.second == window; });
  window->Retire();
}

void QtDisplay::RunModal(HWND dialog, const bool& ended) {
  if (DialogWidget* window = Find(dialog)) window->SetRun(ended);
  QEventLoop loop;
  // Whatever has ended the dialog, the user or a timer of the host's, is seen before the thread would sleep, and at
  // the next round of events where the host never lets it sleep.
  const auto leaveIfEnded = [&] {
    if (ended) loop.exit();
  };
  const auto* dispatcher = QAbstractEventDispatcher::instance();
  QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, &loop, leaveIfEnded);
  QObject::connect(dispatcher, &QAbstractEventDispatcher::awake, &loop, leaveIfEnded);
  if (!ended) loop.exec(QEventLoop::DialogExec);
}

int QtDisplay::RunMessageBox(const MessageBoxView& view) {
  if (events == nullptr) return 0;
  DialogWidget* dialog = Find(view.owner);
  const OwnerWindow owner = OwnerOf(dialog, view.foreignOwner, x11.get());
  // The owner may go while the box runs, and the box with it.
  const QPointer<QMessageBox> box = new QMessageBox(dialog);
  box->setIcon(IconOf(view.type));
  box->setWindowTitle(QString::fromStdString(view.caption));
  box->setTextFormat(Qt::PlainText);
  box->setText(QString::fromStdString(view.text));
  box->setStandardButtons(QMessageBox::Ok);
  windowing::SetOwner(*box, owner.window);
  box->exec();
  delete box;
  if (Find(view.owner) == dialog && dialog != nullptr) dialog->activateWindow();
  return IDOK;
}

void QtDisplay::SetText(HWND window, const std::string& text) {
  if (DialogWidget* dialog = Find(window)) dialog->setWindowTitle(QString::fromStdString(text));
  if (const DialogWidget* dialog = FindOwnerOf(window)) ShowControlText(*dialog->Controls().at(window), text);
}

void QtDisplay::SetCheck(HWND checkBox, int state) {
  if (const DialogWidget* dialog = FindOwnerOf(checkBox)) ShowCheckState(*dialog->Controls().at(checkBox), state);
}

// A dialog that owns another takes no input by that one's modality, and keeps its looks.
void QtDisplay::SetEnabled(HWND window, bool enabled) {
  if (const DialogWidget* dialog = FindOwnerOf(window)) dialog->Controls().at(window)->setEnabled(enabled);
}

void QtDisplay::SetFocus(HWND control, bool selectAll) {
  if (DialogWidget* dialog = FindOwnerOf(control)) dialog->FocusControl(control, selectAll);
}

void QtDisplay::MoveDialogWindow(HWND dialog, POINT topLeft) {
  if (DialogWidget* window = Find(dialog)) window->Place({topLeft.x, topLeft.y});
}

RECT QtDisplay::WindowRect(HWND dialog) {
  const DialogWidget* window = Find(dialog);
  return window != nullptr ? ToRect(window->FrameRectangle()) : RECT{};
}

POINT QtDisplay::ClientOrigin(HWND dialog) {
  const DialogWidget* window = Find(dialog);
  if (window == nullptr) return {};
  const QRect client = window->ClientRectangle();
  return {client.left(), client.top()};
}

std::optional<RECT> QtDisplay::ForeignRect(std::uintptr_t window) {
  const std::optional<QRect> found = x11 != nullptr ? x11->WindowRectangle(window) : std::nullopt;
  if (!found) return std::nullopt;
  return ToRect(FromDevicePixels(*found));
}

void QtDisplay::NoteCursorWindows() {
  waitCursor.NoteWindows();
}

void QtDisplay::ShowWaitCursor() {
  waitCursor.Show(x11.get());
}

void QtDisplay::RestoreCursor() {
  waitCursor.GiveBack();
}

std::optional<POINT> QtDisplay::CursorPosition() {
  const QPoint point = QCursor::pos();
  return POINT{point.x(), point.y()};
}

}  // namespace windowing
