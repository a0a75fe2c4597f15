#include "dialog_widget.h"

#include <QAbstractButton>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QStyle>

#include "access_keys.h"
#include "control_widgets.h"

namespace windowing {
namespace {

// The widths of a window frame on a plain desktop.
constexpr QMargins usualFrame(4, 22, 4, 4);

QMargins& KnownFrame() {
  static QMargins frame = usualFrame;
  return frame;
}

POINT ToPoint(QPoint point) {
  return {point.x(), point.y()};
}

bool IsEnter(const QKeyEvent& event) {
  const bool plain = (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
  return plain && (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter);
}

bool IsEscape(const QKeyEvent& event) {
  return event.modifiers() == Qt::NoModifier && event.key() == Qt::Key_Escape;
}

}  // namespace

DialogWidget::DialogWidget(const DialogView& view, DisplayEvents& coreEvents, QSize workArea)
    : QDialog(nullptr, dialogFlags), handle(view.handle), events(&coreEvents) {
  const QSize room = workArea.shrunkBy(Frame());
  const QSize whole(view.width, view.height);
  const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
  const bool fits = whole.boundedTo(room) == whole;
  setWindowTitle(QString::fromStdString(view.title));
  setFixedSize(whole);
  const std::vector<QWidget*> widgets = MakeControlWidgets(view.controls, *this);
  if (!fits) {
    setFixedSize((whole + QSize(bar, bar)).boundedTo(room));
    scrolled = new ScrolledControls(*this, widgets, whole);
  }
  for (std::size_t i = 0; i < widgets.size(); ++i) Connect(view.controls[i], *widgets[i]);
}

void DialogWidget::Connect(const ControlView& view, QWidget& widget) {
  const HWND control = view.handle;
  controls[control] = &widget;
  widget.installEventFilter(this);
  if (auto* button = qobject_cast<QAbstractButton*>(&widget)) {
    connect(button, &QAbstractButton::clicked, this, [this, control, button] {
      const QScopedValueRollback<QWidget*> guard(pressed, button);
      Report([control](DisplayEvents& to) { to.OnClick(control); });
    });
  }
  if (auto* edit = qobject_cast<QLineEdit*>(&widget)) {
    connect(edit, &QLineEdit::textEdited, this, [this, control](const QString& text) {
      Report([control, &text](DisplayEvents& to) { to.OnTextEdited(control, text.toStdString()); });
    });
  }
}

template <class What>
void DialogWidget::Report(What what) {
  if (events == nullptr) return;
  ++reports;
  what(*events);
  // Not in Retire: called from another window's loop within this report, it would delete the dialog under it.
  if (--reports == 0 && retired) deleteLater();
}

void DialogWidget::SetOwner(OwnerWindow ownerWindow) {
  owner = std::move(ownerWindow);
  windowing::SetOwner(*this, owner.window);
}

void DialogWidget::ShowActive() {
  std::vector<QWidget*> widgets;
  widgets.reserve(controls.size());
  for (const auto& [control, widget] : controls) widgets.push_back(widget);
  GiveAccessKeys(widgets);
  show();
  activateWindow();
}

void DialogWidget::Abandon() {
  events = nullptr;
  isEnded = nullptr;
}

void DialogWidget::Retire() {
  Abandon();
  if (windowHandle() != nullptr && windowHandle()->isExposed()) KnownFrame() = windowHandle()->frameMargins();
  hide();
  Q_EMIT finished(Rejected);
  if (owner.window != nullptr && owner.foreign == nullptr) owner.window->requestActivate();
  retired = true;
  if (reports == 0) delete this;
}

// The button stays enabled and keeps the focus; only its colours change.
void DialogWidget::ShowWaiting(bool waiting) {
  if (pressed == nullptr) return;
  QPalette look;
  for (int number = 0; waiting && number < QPalette::NColorRoles; ++number) {
    const auto role = static_cast<QPalette::ColorRole>(number);
    look.setBrush(role, palette().brush(QPalette::Disabled, role));
  }
  pressed->setPalette(look);
  if (!waiting) KeepFrameVisible(*pressed);
  repaint();
}

void DialogWidget::FocusControl(HWND control, bool selectAll) {
  const QScopedValueRollback<bool> guard(placing, true);
  QWidget* widget = controls.at(control);
  focused = control;
  widget->setFocus();
  auto* edit = qobject_cast<QLineEdit*>(widget);
  if (edit != nullptr && selectAll) edit->selectAll();
}

void DialogWidget::Place(QPoint topLeft) {
  const QScopedValueRollback<bool> guard(placing, true);
  framePlace = topLeft;
  // As long as the window has no frame, move() places its client area.
  move(topLeft);
  windowHandle()->setFramePosition(topLeft);
}

QRect DialogWidget::FrameRectangle() const {
  return isVisible() ? frameGeometry() : QRect(framePlace, size().grownBy(Frame()));
}

QRect DialogWidget::ClientRectangle() const {
  return isVisible() ? geometry() : FrameRectangle().marginsRemoved(Frame());
}

QMargins DialogWidget::Frame() {
  return KnownFrame();
}

bool DialogWidget::eventFilter(QObject* widget, QEvent* event) {
  // Qt would let a push button with the focus answer Enter; here Enter is the core's to answer.
  if (event->type() == QEvent::KeyPress && qobject_cast<QPushButton*>(widget) != nullptr) {
    auto* key = static_cast<QKeyEvent*>(event);
    if (!IsEnter(*key)) return false;
    keyPressEvent(key);
    return true;
  }
  if (event->type() == QEvent::FocusIn) OnFocusIn(*static_cast<QWidget*>(widget));
  return false;
}

void DialogWidget::OnFocusIn(QWidget& widget) {
  if (scrolled != nullptr) scrolled->Follow(widget);
  if (placing) return;
  for (const auto& [control, shown] : controls) {
    // A window that becomes active reports the same control again.
    if (shown != &widget || std::exchange(focused, control) == control) continue;
    return Report([gained = control](DisplayEvents& to) { to.OnFocus(gained); });
  }
}

void DialogWidget::PressEnter() {
  QPushButton* button = qobject_cast<QPushButton*>(focusWidget());
  for (const auto& [control, widget] : controls) {
    auto* const other = qobject_cast<QPushButton*>(widget);
    if (button == nullptr && other != nullptr && other->isDefault()) button = other;
  }
  const QScopedValueRollback<QWidget*> guard(pressed, button);
  Report([this](DisplayEvents& to) { to.OnEnter(handle); });
}

void DialogWidget::keyPressEvent(QKeyEvent* event) {
  if (IsEnter(*event)) {
    PressEnter();
  } else if (IsEscape(*event)) {
    Report([this](DisplayEvents& to) { to.OnEscape(handle); });
  } else if (scrolled != nullptr) {
    scrolled->keyPressEvent(event);
  } else {
    event->ignore();
  }
}

// The dialog itself stays open until the core ends it. A host that quits closes all its windows first, and does not
// quit if one stays open; so a dialog that has ended by now accepts.
void DialogWidget::closeEvent(QCloseEvent* event) {
  Report([this](DisplayEvents& to) { to.OnCloseBox(handle); });
  event->setAccepted(!event->spontaneous() && isEnded != nullptr && *isEnded);
}

// The window manager places a window before it is shown; a move after that is the user's.
void DialogWidget::moveEvent(QMoveEvent* event) {
  QDialog::moveEvent(event);
  // If the client area stands where it was, only the size of the frame has become known.
  const QPoint place = geometry().topLeft();
  if (std::exchange(clientPlace, place) == place || placing || !windowHandle()->isExposed()) return;
  Report([this](DisplayEvents& to) { to.OnDragged(handle); });
}

void DialogWidget::wheelEvent(QWheelEvent* event) {
  const int delta = event->angleDelta().y();
  const POINT point = ToPoint(event->globalPosition().toPoint());
  Report([this, delta, point](DisplayEvents& to) { to.OnWheel(handle, delta, point); });
}

void DialogWidget::ReportLeftButton(const QMouseEvent& event, bool doubleClick) {
  if (event.button() != Qt::LeftButton) return;
  const POINT point = ToPoint(event.position().toPoint());
  Report([this, doubleClick, point](DisplayEvents& to) { to.OnLeftButton(handle, doubleClick, point); });
}

void DialogWidget::mousePressEvent(QMouseEvent* event) {
  ReportLeftButton(*event, false);
}

void DialogWidget::mouseDoubleClickEvent(QMouseEvent* event) {
  ReportLeftButton(*event, true);
}

}  // namespace windowing
