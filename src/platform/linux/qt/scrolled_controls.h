// Holds the controls of a dialog that is larger than its screen: a scroll area that follows the focus and, always in
// sight below it, the last row of buttons. Every control keeps its place in the layout of the whole dialog.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_SCROLLED_CONTROLS_H
#define NVSUPPORT_PLATFORM_LINUX_QT_SCROLLED_CONTROLS_H

#include <QDialog>
#include <QScrollArea>
#include <vector>

namespace windowing {

class ScrolledControls final : public QScrollArea {
 public:
  // Takes the controls over. whole: the size that they are laid out for; the dialog itself is smaller by now.
  ScrolledControls(QDialog& dialog, const std::vector<QWidget*>& controls, QSize whole);

  // Scrolls a control into sight, and the label of an edit with it.
  void Follow(const QWidget& control);
  // Made public: it scrolls on the arrow and page keys.
  using QScrollArea::keyPressEvent;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void scrollContentsBy(int x, int y) override;

 private:
  // Moves the row sideways with what the area shows.
  void PlaceRow();

  QWidget* row = nullptr;  // of buttons
};

}  // namespace windowing

#endif
