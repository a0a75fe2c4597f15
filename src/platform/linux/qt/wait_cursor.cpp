#include "wait_cursor.h"

#include <QCursor>
#include <QGuiApplication>
#include <QWindow>
#include <algorithm>
#include <utility>

namespace windowing {
namespace {

// Qt passes a cursor on only when it differs from the last one.
void SetCursorAgain(QWindow& window) {
  const QCursor cursor = window.cursor();
  window.setCursor(cursor.shape() == Qt::ArrowCursor ? Qt::WaitCursor : Qt::ArrowCursor);
  window.setCursor(cursor);
}

void FlushQtConnection() {
  if (const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()) xcb_flush(x11->connection());
}

}  // namespace

void WaitCursor::NoteWindows() {
  const std::lock_guard<std::mutex> lock(mutex);
  windows.clear();
  for (const QWindow* window : QGuiApplication::topLevelWindows()) {
    if (window->handle() != nullptr && window->isVisible())
      windows.push_back(static_cast<xcb_window_t>(window->winId()));
  }
}

void WaitCursor::Show(const X11Connection* x11) {
  const std::lock_guard<std::mutex> lock(mutex);
  shown = true;
  if (x11 != nullptr) x11->SetWaitCursor(windows);
}

void WaitCursor::GiveBack() {
  const std::lock_guard<std::mutex> lock(mutex);
  if (!std::exchange(shown, false)) return;
  for (QWindow* window : QGuiApplication::topLevelWindows()) {
    if (window->handle() == nullptr) continue;
    const auto id = static_cast<xcb_window_t>(window->winId());
    if (std::find(windows.begin(), windows.end(), id) != windows.end()) SetCursorAgain(*window);
  }
  FlushQtConnection();
}

}  // namespace windowing
