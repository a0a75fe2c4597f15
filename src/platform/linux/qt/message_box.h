// A message box. It has no parent widget: asked for its window, it would turn every control of the parent's into a
// window of its own, with a cursor of its own.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_MESSAGE_BOX_H
#define NVSUPPORT_PLATFORM_LINUX_QT_MESSAGE_BOX_H

#include <QMessageBox>

#include "windowing/display.h"

namespace windowing {

class MessageBox final : public QMessageBox {
 public:
  explicit MessageBox(const MessageBoxView& view);

 protected:
  // Copy takes all that the box says.
  void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace windowing

#endif
