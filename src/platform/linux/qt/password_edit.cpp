#include "password_edit.h"

#include <xcb/xcb.h>

#include <QAction>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QStyle>
#include <cstdlib>
#include <memory>

namespace windowing {
namespace {

// The same bit in the masks of X and of Wayland.
constexpr quint32 lockMask = XCB_MOD_MASK_LOCK;

// On X11 the server is asked for the present state; elsewhere the event of a key tells it.
bool IsCapsLockOn(const QEvent& event) {
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (xcb_connection_t* const server = x11 != nullptr ? x11->connection() : nullptr) {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(server)).data->root;
    const std::unique_ptr<xcb_query_pointer_reply_t, decltype(&std::free)> reply(
        xcb_query_pointer_reply(server, xcb_query_pointer(server, root), nullptr), &std::free);
    return reply != nullptr && (reply->mask & lockMask) != 0;
  }
  const bool isKey = event.type() == QEvent::KeyPress;
  return isKey && (static_cast<const QKeyEvent&>(event).nativeModifiers() & lockMask) != 0;
}

}  // namespace

PasswordEdit::PasswordEdit(QWidget& parent)
    : QLineEdit(&parent),
      sign(addAction(style()->standardIcon(QStyle::SP_MessageBoxWarning), QLineEdit::TrailingPosition)) {
  setEchoMode(Password);
  // Qt's name of the key, in the language in force.
  sign->setToolTip(QKeySequence(Qt::Key_CapsLock).toString(QKeySequence::NativeText));
  sign->setVisible(false);
}

bool PasswordEdit::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::FocusIn:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
      ShowCapsLock(IsCapsLockOn(*event));
      break;
    case QEvent::FocusOut:
      ShowCapsLock(false);
      break;
    default:
      break;
  }
  return QLineEdit::event(event);
}

void PasswordEdit::ShowCapsLock(bool on) {
  if (on == sign->isVisible()) return;
  sign->setVisible(on);
  setAccessibleDescription(on ? sign->toolTip() : QString());
}

}  // namespace windowing
