#include "owner_window.h"

#include <QGuiApplication>

namespace windowing {

QWindow* QtWindow(std::uintptr_t id) {
  for (QWindow* window : QGuiApplication::allWindows()) {
    // Asking for its id is safe only for a window that Qt made and that exists.
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
  // A host whose own windows are hidden must not quit because a dialog closes.
  window.setAttribute(Qt::WA_QuitOnClose, false);
  window.winId();  // makes windowHandle() exist
  window.windowHandle()->setTransientParent(owner);
}

}  // namespace windowing
