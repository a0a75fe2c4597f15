// Ties one of our windows to its owner: it stays above the owner, which takes no input meanwhile.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_OWNER_WINDOW_H
#define NVSUPPORT_PLATFORM_LINUX_QT_OWNER_WINDOW_H

#include <QPointer>
#include <QWidget>
#include <QWindow>
#include <cstdint>
#include <memory>

namespace windowing {

// Finds a Qt window of this process by its id, on X11 or any other system; null if there is none.
QWindow* QtWindow(std::uintptr_t id);
QWindow& TopLevelOf(QWindow& window);

// The owner of a window, as Qt sees it. For a window that is not Qt's, a stand-in lives here as long as it is needed.
struct OwnerWindow {
  QPointer<QWindow> window;          // null for no owner
  std::unique_ptr<QWindow> foreign;  // the stand-in, if there is one
};

// The owner is the dialog or, without one, the host's top-level window with this id; 0 means none.
OwnerWindow OwnerOf(const QWidget* dialog, std::uintptr_t foreignId);

// Without an owner the window blocks all windows of the application, because the host is waiting for it.
void SetOwner(QWidget& window, QWindow* owner);

}  // namespace windowing

#endif
