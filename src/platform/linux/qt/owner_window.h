// Ties a window of ours to the one that owns it: above it, and the owner takes no input meanwhile.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_OWNER_WINDOW_H
#define NVSUPPORT_PLATFORM_LINUX_QT_OWNER_WINDOW_H

#include <QPointer>
#include <QWidget>
#include <QWindow>
#include <cstdint>
#include <memory>

#include "x11_connection.h"

namespace windowing {

// What Qt knows of the window that owns another. One that is not Qt's stands here for as long as it owns.
struct OwnerWindow {
  QPointer<QWindow> window;          // null for no owner
  std::unique_ptr<QWindow> foreign;  // what `window` points to if the window is not Qt's
};

OwnerWindow OwnerOf(QWidget* dialog, std::uintptr_t foreignId, const X11Connection* x11);

// A window without an owner holds up all of the application's windows: the host is waiting for this one.
void SetOwner(QWidget& window, QWindow* owner);

}  // namespace windowing

#endif
