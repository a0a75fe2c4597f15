#include "owner_window.h"

#include <QGuiApplication>

namespace windowing {

QWindow* QtWindow(std::uintptr_t id) {
  for (QWindow* window : QGuiApplication::allWindows()) {
    // A window that stands for another program's has no such information.
    if (window->type() == Qt::ForeignWindow || window->handle() == nullptr) continue;
    if (window->winId() == id) return window;
  }
  return nullptr;
}

QWindow& TopLevelOf(QWindow& window) {
  QWindow* at = &window;
  while (at->parent() != nullptr) at = at->parent();
  return *at;
}

OwnerWindow OwnerOf(const QWidget* dialog, std::uintptr_t foreignId) {
  OwnerWindow owner;
  if (dialog != nullptr) {
    owner.window = dialog->windowHandle();
  } else if (foreignId != 0) {
    owner.window = QtWindow(foreignId);
    if (owner.window == nullptr) owner.foreign.reset(QWindow::fromWinId(foreignId));
    if (owner.foreign != nullptr) owner.window = owner.foreign.get();
  }
  return owner;
}

void SetOwner(QWidget& window, QWindow* owner) {
  window.setWindowModality(owner != nullptr ? Qt::WindowModal : Qt::ApplicationModal);
  // The end of a dialog is not the end of a host whose own windows happen to be hidden.
  window.setAttribute(Qt::WA_QuitOnClose, false);
  window.winId();  // makes the window that the owner is set on
  window.windowHandle()->setTransientParent(owner);
}

}  // namespace windowing
