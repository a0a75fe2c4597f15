// The edit of a password. While Caps Lock is on it shows a sign that screen readers announce, too.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_PASSWORD_EDIT_H
#define NVSUPPORT_PLATFORM_LINUX_QT_PASSWORD_EDIT_H

#include <QLineEdit>

namespace windowing {

class PasswordEdit final : public QLineEdit {
 public:
  explicit PasswordEdit(QWidget& parent);

 protected:
  bool event(QEvent* event) override;

 private:
  void ShowCapsLock(bool on);

  QAction* sign;
};

}  // namespace windowing

#endif
