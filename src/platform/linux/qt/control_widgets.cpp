#include "control_widgets.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QStyleOptionButton>

#include "password_edit.h"

namespace windowing {
namespace {

// Can be clicked anywhere in its rectangle. A click goes to the core, which changes the state by its own rules.
class CheckBox final : public QCheckBox {
 public:
  using QCheckBox::QCheckBox;

 protected:
  bool hitButton(const QPoint& position) const override { return rect().contains(position); }
  void nextCheckState() override {}
};

QString WithoutMarks(const QString& text) {
  QString plain;
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (text[i] == QLatin1Char('&')) ++i;
    if (i < text.size()) plain += text[i];
  }
  return plain;
}

QSize SizeOfLines(const QWidget& widget, const QString& text, int width, int flags) {
  return widget.fontMetrics().boundingRect(0, 0, width, QWIDGETSIZE_MAX, flags, text).size();
}

bool FitsInButton(const QPushButton& button, const QString& plain) {
  QStyleOptionButton option;
  option.initFrom(&button);
  const QSize room = button.style()->subElementRect(QStyle::SE_PushButtonContents, &option, &button).size();
  return SizeOfLines(button, plain, 0, 0).width() <= room.width();
}

bool FitsInLabel(const QLabel& label, const QString& plain) {
  const QSize size = SizeOfLines(label, plain, label.width(), Qt::TextWordWrap);
  return size.width() <= label.width() && size.height() <= label.height();
}

bool Fits(const QWidget& widget, const QString& plain) {
  if (const auto* label = qobject_cast<const QLabel*>(&widget)) return FitsInLabel(*label, plain);
  if (const auto* button = qobject_cast<const QPushButton*>(&widget)) return FitsInButton(*button, plain);
  if (const auto* box = qobject_cast<const QCheckBox*>(&widget)) return box->sizeHint().width() <= box->width();
  return true;
}

QWidget* MakeLabel(const ControlView& view, QDialog& dialog) {
  auto* label = new QLabel(&dialog);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setAlignment(Qt::AlignTop | (view.alignRight ? Qt::AlignRight : Qt::AlignLeft));
  return label;
}

QWidget* MakeEdit(const ControlView& view, QDialog& dialog) {
  if (view.password) return new PasswordEdit(dialog);
  return new QLineEdit(&dialog);
}

QWidget* MakePushButton(const ControlView& view, QDialog& dialog) {
  auto* button = new QPushButton(&dialog);
  button->setAutoDefault(true);
  button->setDefault(view.defaultButton);
  return button;
}

QWidget* MakeCheckBox(const ControlView& view, QDialog& dialog) {
  auto* box = new CheckBox(QString::fromStdString(view.text), &dialog);  // before it is measured
  box->setTristate(view.threeState);
  return box;
}

QWidget* MakeWidget(const ControlView& view, QDialog& dialog) {
  switch (view.kind) {
    case ControlKind::edit:
      return MakeEdit(view, dialog);
    case ControlKind::pushButton:
      return MakePushButton(view, dialog);
    case ControlKind::checkBox:
      return MakeCheckBox(view, dialog);
    default:
      return MakeLabel(view, dialog);
  }
}

Qt::FocusPolicy FocusPolicyOf(const ControlView& view) {
  if (view.kind == ControlKind::label) return Qt::NoFocus;
  return view.tabStop ? Qt::StrongFocus : Qt::ClickFocus;
}

QWidget* MakeControl(const ControlView& view, QDialog& dialog) {
  QWidget* widget = MakeWidget(view, dialog);
  widget->setObjectName(QString::number(view.id));
  widget->setFocusPolicy(FocusPolicyOf(view));
  PlaceControl(*widget, view.rectangle);
  KeepFrameVisible(*widget);
  return widget;
}

void NameEdits(const std::vector<QWidget*>& widgets) {
  for (std::size_t i = 1; i < widgets.size(); ++i) {
    auto* label = qobject_cast<QLabel*>(widgets[i - 1]);
    if (label != nullptr && qobject_cast<QLineEdit*>(widgets[i]) != nullptr) label->setBuddy(widgets[i]);
  }
}

}  // namespace

std::vector<QWidget*> MakeControlWidgets(const std::vector<ControlView>& controls, QDialog& dialog) {
  std::vector<QWidget*> widgets;
  widgets.reserve(controls.size());
  // Made in the order of the template, so that Qt's tab order is the same.
  for (const ControlView& view : controls) widgets.push_back(MakeControl(view, dialog));
  NameEdits(widgets);
  for (std::size_t i = 0; i < controls.size(); ++i) ShowControlText(*widgets[i], controls[i].text);
  return widgets;
}

// Mirrored in languages that are written from right to left. A check box that its template makes too low for its mark
// and text grows around its centre. A label gets at least the height of a line, which can exceed the template's units.
void PlaceControl(QWidget& widget, const RECT& rectangle) {
  QRect place = ToQRect(rectangle);
  if (const auto* box = qobject_cast<const QCheckBox*>(&widget)) {
    const int height = std::max(box->minimumSizeHint().height(), box->fontMetrics().height() + 2);
    place.setTop(place.top() + (place.height() - height) / 2);
    place.setHeight(height);
  } else if (qobject_cast<const QLabel*>(&widget) != nullptr) {
    place.setHeight(std::max(place.height(), SizeOfLines(widget, QStringLiteral("Xg"), 0, 0).height()));
  }
  const QRect within(QPoint(0, 0), widget.parentWidget()->size());
  widget.setGeometry(QStyle::visualRect(widget.layoutDirection(), within, place));
}

// Qt's usual style takes a darker shade of the colour of the window around a control, and black has none.
void KeepFrameVisible(QWidget& widget) {
  constexpr int almostBlack = 16;
  QPalette look = widget.palette();
  if (look.color(QPalette::Window).value() > almostBlack) return;
  look.setColor(QPalette::Window, look.color(QPalette::WindowText));
  widget.setPalette(look);
}

void ShowControlText(QWidget& widget, const std::string& text) {
  const QString marked = QString::fromStdString(text);
  const QString plain = WithoutMarks(marked);
  if (auto* edit = qobject_cast<QLineEdit*>(&widget)) return edit->setText(marked);
  // In other labels Qt would show the mark itself.
  if (auto* label = qobject_cast<QLabel*>(&widget)) label->setText(label->buddy() != nullptr ? marked : plain);
  if (auto* button = qobject_cast<QAbstractButton*>(&widget)) button->setText(marked);
  const QString tip = Qt::mightBeRichText(plain) ? plain.toHtmlEscaped() : plain;
  widget.setToolTip(Fits(widget, plain) ? QString() : tip);
}

void ShowCheckState(QWidget& widget, int state) {
  constexpr Qt::CheckState states[] = {Qt::Unchecked, Qt::Checked, Qt::PartiallyChecked};
  auto* box = qobject_cast<QCheckBox*>(&widget);
  if (box != nullptr) box->setCheckState(states[state]);
}

}  // namespace windowing
