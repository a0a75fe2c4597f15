// Ties a window of ours to the one that owns it: above it, and the owner takes no input meanwhile.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_OWNER_WINDOW_H
#define NVSUPPORT_PLATFORM_LINUX_QT_OWNER_WINDOW_H

#include <QPointer>
#include <QWidget>
#include <QWindow>
#include <cstdint>
#include <memory>

namespace windowing {

// A window of Qt's in this process by its id, on whatever screen system; null if there is none.
QWindow* QtWindow(std::uintptr_t id);
QWindow& TopLevelOf(QWindow& window);

// What Qt knows of the window that owns another. One that is not Qt's stands here for as long as it owns.
struct OwnerWindow {
  QPointer<QWindow> window;          // null for no owner
  std::unique_ptr<QWindow> foreign;  // what `window` points to if the window is not Qt's
};

// The owner is a dialog, or else a top-level window of the host's own by its id, which may be 0 for none.
OwnerWindow OwnerOf(const QWidget* dialog, std::uintptr_t foreignId);

// A window without an owner holds up all of the application's windows: the host is waiting for this one.
void SetOwner(QWidget& window, QWindow* owner);

}  // namespace windowing

#endif
