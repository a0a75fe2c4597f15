#include "scrolled_controls.h"

#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <algorithm>

namespace windowing {
namespace {

constexpr int margin = 8;  // left around a control that is scrolled into sight

// Where the row of the lowest push buttons begins; the bottom of a dialog without push buttons.
int TopOfLastRow(const std::vector<QWidget*>& controls, int bottom) {
  int top = 0;
  for (const QWidget* control : controls) {
    if (qobject_cast<const QPushButton*>(control) != nullptr) top = std::max(top, control->y());
  }
  return top > 0 ? top - margin : bottom;
}

void MoveInto(QWidget& parent, QWidget& control) {
  const QRect place = control.geometry();
  control.setParent(&parent);
  control.setGeometry(place);
}

}  // namespace

ScrolledControls::ScrolledControls(QDialog& dialog, const std::vector<QWidget*>& controls, QSize whole)
    : QScrollArea(&dialog) {
  const int rowTop = TopOfLastRow(controls, whole.height());
  const int rowHeight = whole.height() - rowTop;
  setFrameShape(NoFrame);
  setFocusPolicy(Qt::NoFocus);
  setGeometry(0, 0, dialog.width(), dialog.height() - rowHeight);
  setWidget(new QWidget);
  widget()->resize(whole.width(), rowTop);
  auto* const frame = new QWidget(&dialog);
  frame->setGeometry(0, height(), dialog.width(), rowHeight);
  row = new QWidget(frame);
  row->setGeometry(0, -rowTop, whole.width(), whole.height());
  for (QWidget* control : controls) MoveInto(control->y() < rowTop ? *widget() : *row, *control);
}

void ScrolledControls::resizeEvent(QResizeEvent* event) {
  QScrollArea::resizeEvent(event);
  PlaceRow();
}

void ScrolledControls::scrollContentsBy(int x, int y) {
  QScrollArea::scrollContentsBy(x, y);
  PlaceRow();
}

void ScrolledControls::PlaceRow() {
  row->move(viewport()->x() + widget()->x(), row->y());
}

void ScrolledControls::Follow(const QWidget& control) {
  QRect place = control.geometry();
  for (const auto* label : widget()->findChildren<QLabel*>()) {
    if (label->buddy() == &control) place |= label->geometry();
  }
  const QPoint centre = place.center();
  if (control.parentWidget() == row) {
    ensureVisible(centre.x(), verticalScrollBar()->value(), place.width() / 2 + margin, 0);
  } else {
    ensureVisible(centre.x(), centre.y(), place.width() / 2 + margin, place.height() / 2 + margin);
  }
}

}  // namespace windowing
