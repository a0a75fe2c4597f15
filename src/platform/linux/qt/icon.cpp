#include "icon.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace windowing {

// A pin on a map.
QIcon OwnIcon() {
  QPixmap picture(48, 48);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(0x2f, 0x6f, 0xa7));
  painter.drawRoundedRect(2, 2, 44, 44, 9, 9);
  QPainterPath pin(QPointF(24, 41));
  pin.cubicTo(20, 31, 12, 26, 12, 19);
  pin.arcTo(12, 7, 24, 24, 180, -180);
  pin.cubicTo(36, 26, 28, 31, 24, 41);
  pin.addEllipse(QPointF(24, 19), 5, 5);
  painter.setBrush(Qt::white);
  painter.drawPath(pin);
  return picture;
}

}  // namespace windowing
