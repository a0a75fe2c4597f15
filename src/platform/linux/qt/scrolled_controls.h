// Where the controls of a dialog lie that is larger than its screen: in a scroll area that follows the focus, and below
// it, always in sight, the row of buttons at the bottom. Controls keep their places in the dialog as it was laid out.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_SCROLLED_CONTROLS_H
#define NVSUPPORT_PLATFORM_LINUX_QT_SCROLLED_CONTROLS_H

#include <QDialog>
#include <QScrollArea>
#include <vector>

namespace windowing {

class ScrolledControls final : public QScrollArea {
 public:
  // Takes the controls of a dialog that was laid out for a whole size and has been given a smaller one.
  ScrolledControls(QDialog& dialog, const std::vector<QWidget*>& controls, QSize whole);

  // Brings a control into sight, an edit with the label that names it.
  void Follow(const QWidget& control);
  // Scrolls by the arrow and page keys.
  using QScrollArea::keyPressEvent;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void scrollContentsBy(int x, int y) override;

 private:
  // Beside what the area shows.
  void PlaceRow();

  QWidget* row = nullptr;  // of buttons
};

}  // namespace windowing

#endif
