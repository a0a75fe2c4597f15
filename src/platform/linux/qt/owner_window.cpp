#include "owner_window.h"

#include <QGuiApplication>

namespace windowing {
namespace {

QWindow* WindowOfQt(WId id) {
  for (QWindow* window : QGuiApplication::topLevelWindows()) {
    if (window->handle() != nullptr && window->winId() == id) return window;
  }
  return nullptr;
}

}  // namespace

OwnerWindow OwnerOf(QWidget* dialog, std::uintptr_t foreignId, const X11Connection* x11) {
  OwnerWindow owner;
  if (dialog != nullptr) {
    owner.window = dialog->windowHandle();
  } else if (x11 != nullptr && x11->WindowRectangle(foreignId)) {
    owner.window = WindowOfQt(foreignId);
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
