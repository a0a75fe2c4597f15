#include "qt_display.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QEventLoop>
#include <QFontMetrics>
#include <QScreen>
#include <algorithm>
#include <cmath>
#include <utility>

#include "application.h"
#include "control_widgets.h"
#include "icon.h"
#include "message_box.h"
#include "windowing/windowing.h"

namespace windowing {
namespace {

RECT ToRect(const QRect& r) {
  return {r.left(), r.top(), r.left() + r.width(), r.top() + r.height()};
}

// From the X server's pixels to Qt's. A screen that Qt scales keeps its origin.
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

}  // namespace

void QtDisplay::Use(DisplayEvents* coreEvents) {
  if (events == coreEvents) return;
  for (const auto& [handle, dialog] : std::exchange(dialogs, {})) dialog->Abandon();
  controlOwners.clear();
  events = coreEvents;
}

void QtDisplay::SetLanguage(const std::string& name) {
  TranslateApplication(name);
}

// The width is rounded up: the templates are made for a narrow font, and the usual ones of Qt are wider.
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

int QtDisplay::ScreenOf(const RECT& rectangle) {
  const QRect place = ToQRect(rectangle);
  const QList<QScreen*> screens = QGuiApplication::screens();
  const auto remoteness = [&place](const QScreen* screen) {
    const QRect area = screen->geometry();
    const QRect common = area & place;
    const QPoint off = place.center() - area.center();
    return std::pair(-common.width() * common.height(), std::hypot(off.x(), off.y()));
  };
  const auto nearest = std::min_element(screens.begin(), screens.end(), [&](const QScreen* one, const QScreen* other) {
    return remoteness(one) < remoteness(other);
  });
  return static_cast<int>(nearest - screens.begin());
}

RECT QtDisplay::WorkArea(int screen) {
  const QList<QScreen*> screens = QGuiApplication::screens();
  return screen < screens.size() ? ToRect(screens[screen]->availableGeometry()) : RECT{};
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

QIcon QtDisplay::IconUnder(HWND owner, std::uintptr_t foreignOwner) const {
  if (const DialogWidget* dialog = Find(owner)) return dialog->windowIcon();
  const QImage ofWindow = x11 != nullptr && foreignOwner != 0 ? x11->WindowIcon(foreignOwner) : QImage();
  if (!ofWindow.isNull()) return QPixmap::fromImage(ofWindow);
  const QIcon ofHost = QApplication::windowIcon();
  return ofHost.isNull() ? OwnIcon() : ofHost;
}

RECT QtDisplay::WorkAreaFor(const DialogView& view) {
  std::optional<RECT> place = ForeignRect(view.foreignOwner);
  if (Find(view.owner) != nullptr) place = WindowRect(view.owner);
  return WorkArea(ScreenOf(place.value_or(ScreenArea())));
}

bool QtDisplay::CreateDialogWindow(const DialogView& view) {
  if (events == nullptr) return false;
  auto* dialog = new DialogWidget(view, *events, ToQRect(WorkAreaFor(view)).size());
  dialog->setWindowIcon(IconUnder(view.owner, view.foreignOwner));
  dialog->SetOwner(OwnerOf(Find(view.owner), view.foreignOwner));
  dialogs[view.handle] = dialog;
  for (const ControlView& control : view.controls) controlOwners[control.handle] = dialog;
  return true;
}

void QtDisplay::ShowDialogWindow(HWND dialog) {
  DialogWidget* window = Find(dialog);
  if (window == nullptr) return;
  window->ShowActive();
  if (x11 != nullptr) x11->KeepContentsAndEdge(window->winId());
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
  // The user or a timer of the host's may end the dialog. That is seen before the thread sleeps or, if the host never
  // lets it sleep, in the next round of events.
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
  const OwnerWindow owner = OwnerOf(dialog, view.foreignOwner);
  MessageBox box(view);
  box.setWindowIcon(IconUnder(view.owner, view.foreignOwner));
  windowing::SetOwner(box, owner.window);
  if (x11 != nullptr) x11->KeepContentsAndEdge(box.winId());
  // If the owner goes while the box is open, the box goes, too.
  if (dialog != nullptr) QObject::connect(dialog, &QDialog::finished, &box, &QDialog::reject);
  box.exec();
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

// Only for controls: a dialog that owns another is kept from input by that one's modality, and must not look disabled.
void QtDisplay::SetEnabled(HWND window, bool enabled) {
  if (const DialogWidget* dialog = FindOwnerOf(window)) dialog->Controls().at(window)->setEnabled(enabled);
}

void QtDisplay::SetFocus(HWND control, bool selectAll) {
  if (DialogWidget* dialog = FindOwnerOf(control)) dialog->FocusControl(control, selectAll);
}

void QtDisplay::MoveControl(HWND control, const RECT& rectangle) {
  if (const DialogWidget* dialog = FindOwnerOf(control)) PlaceControl(*dialog->Controls().at(control), rectangle);
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

// The host's window may be one of Qt's, on any system, or any window of the X server.
std::optional<RECT> QtDisplay::ForeignRect(std::uintptr_t window) {
  if (const QWindow* own = QtWindow(window)) return ToRect({own->mapToGlobal(QPoint(0, 0)), own->size()});
  const std::optional<QRect> found = x11 != nullptr ? x11->WindowRectangle(window) : std::nullopt;
  if (!found) return std::nullopt;
  return ToRect(FromDevicePixels(*found));
}

std::uintptr_t QtDisplay::ForeignTopLevel(std::uintptr_t window) {
  if (QWindow* own = QtWindow(window)) return TopLevelOf(*own).winId();
  return x11 != nullptr ? x11->TopLevelWindow(window) : 0;
}

void QtDisplay::ShowWaiting(bool waiting) {
  for (const auto& [handle, dialog] : dialogs) dialog->ShowWaiting(waiting);
}

}  // namespace windowing
