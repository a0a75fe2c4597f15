#include "message_box.h"

#include <QClipboard>
#include <QFontMetrics>
#include <QGridLayout>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPushButton>
#include <QSpacerItem>

#include "dialog_widget.h"
#include "windowing/windowing.h"

namespace windowing {
namespace {

QMessageBox::Icon IconOf(UINT type) {
  if ((type & MB_ICONERROR) != 0) return QMessageBox::Critical;
  return (type & MB_ICONINFORMATION) != 0 ? QMessageBox::Information : QMessageBox::NoIcon;
}

// What a window manager needs for a caption: its font, which only it knows, is taken for a bold one of the dialogs',
// and each of the icon and the button beside it for as wide as the caption is high.
int CaptionWidth(QFont font, const QString& caption) {
  font.setBold(true);
  return QFontMetrics(font).horizontalAdvance(caption) + 4 * DialogWidget::Frame().top();
}

}  // namespace

MessageBox::MessageBox(const MessageBoxView& view) {
  setWindowFlags(dialogFlags);
  setIcon(IconOf(view.type));
  setWindowTitle(QString::fromStdString(view.caption));
  setTextFormat(Qt::PlainText);
  setText(QString::fromStdString(view.text));
  setTextInteractionFlags(Qt::TextSelectableByMouse);
  // Without a picture, like those of the dialogs, whose templates leave no room for one.
  addButton(QMessageBox::Ok)->setIcon(QIcon());
  // It takes its size from its contents alone.
  auto* grid = qobject_cast<QGridLayout*>(layout());
  if (grid == nullptr) return;
  grid->addItem(new QSpacerItem(CaptionWidth(font(), windowTitle()), 0), grid->rowCount(), 0, 1, grid->columnCount());
}

void MessageBox::keyPressEvent(QKeyEvent* event) {
  if (!event->matches(QKeySequence::Copy)) return QMessageBox::keyPressEvent(event);
  const QString line(27, QLatin1Char('-'));
  const QString answer = button(QMessageBox::Ok)->text().remove(QLatin1Char('&'));
  const QStringList lines{line, windowTitle(), line, text(), line, answer, line, QString()};
  QGuiApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}

}  // namespace windowing
