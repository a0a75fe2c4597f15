// A message box. It has no parent widget: with one, asking for its window id would make Qt turn every control of the
// parent into a native window with a cursor of its own.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_MESSAGE_BOX_H
#define NVSUPPORT_PLATFORM_LINUX_QT_MESSAGE_BOX_H

#include <QMessageBox>

#include "windowing/display.h"

namespace windowing {

class MessageBox final : public QMessageBox {
 public:
  explicit MessageBox(const MessageBoxView& view);

 protected:
  // Ctrl+C copies the caption, the text and the button.
  void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace windowing

#endif
