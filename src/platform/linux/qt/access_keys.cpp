#include "access_keys.h"

#include <QAbstractButton>
#include <QKeySequence>
#include <QLabel>
#include <QSet>

#include "windowing/windowing.h"

namespace windowing {
namespace {

constexpr const char* text = "text";  // the property, of labels and buttons alike

bool TakesKey(const QWidget& control) {
  if (const auto* label = qobject_cast<const QLabel*>(&control)) return label->buddy() != nullptr;
  const int id = control.objectName().toInt();
  return qobject_cast<const QAbstractButton*>(&control) != nullptr && id != IDOK && id != IDCANCEL;
}

// Characters of these scripts are typed as several keys, so Alt and one key cannot name them.
bool HasKey(QChar letter) {
  switch (letter.script()) {
    case QChar::Script_Han:
    case QChar::Script_Hangul:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
      return false;
    default:
      return letter.isLetterOrNumber();
  }
}

// Where the letter to mark stands, or -1.
qsizetype FindFreeLetter(const QString& plain, const QSet<QString>& taken) {
  qsizetype within = -1;
  for (qsizetype i = 0; i < plain.size(); ++i) {
    if (!HasKey(plain[i]) || taken.contains(plain[i].toUpper())) continue;
    if (i == 0 || plain[i - 1].isSpace()) return i;
    if (within < 0) within = i;
  }
  return within;
}

QString MarkedKey(const QWidget& control) {
  return QKeySequence::mnemonic(control.property(text).toString()).toString().section(QLatin1Char('+'), -1);
}

}  // namespace

void GiveAccessKeys(const std::vector<QWidget*>& controls) {
  QSet<QString> taken;
  for (const QWidget* control : controls) taken.insert(MarkedKey(*control));
  for (QWidget* control : controls) {
    if (!TakesKey(*control) || !MarkedKey(*control).isEmpty()) continue;
    QString marked = control->property(text).toString();
    const qsizetype place = FindFreeLetter(marked, taken);
    if (place < 0) continue;
    taken.insert(marked[place].toUpper());
    control->setProperty(text, marked.insert(place, QLatin1Char('&')));
  }
}

}  // namespace windowing
