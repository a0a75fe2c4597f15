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

// How wide a window has to be for its caption. Only the window manager knows its font, so a bold one of the dialog's
// size is assumed, and room for an icon and a button that are each as wide as the caption is high.
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
  // Without an icon, like the buttons of the dialogs, which have no room for one.
  addButton(QMessageBox::Ok)->setIcon(QIcon());
  // A message box sizes itself to its contents, so the caption's width has to be part of them.
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
