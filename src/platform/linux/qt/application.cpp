#include "application.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QThread>
#include <QTranslator>
#include <cerrno>
#include <cstddef>
#include <new>

#include "host_state.h"
#include "usable_platform.h"

namespace windowing {
namespace {

bool madeHere = false;

bool MakeApplication(std::string& whyNot) {
  const HostState kept;
  whyNot = WhyNoPlatform();
  if (!whyNot.empty()) return false;
  // Qt keeps references to both. The program's name becomes the windows' class.
  static int argumentCount = 1;
  static char* arguments[] = {program_invocation_name, nullptr};
  // Never destroyed: in a host without Qt there is no moment at which that would be safe.
  alignas(QApplication) static std::byte room[sizeof(QApplication)];
  new (room) QApplication(argumentCount, arguments);
  // The host goes on when the last dialog closes.
  QApplication::setQuitOnLastWindowClosed(false);
  QCoreApplication::setQuitLockEnabled(false);
  madeHere = true;
  return true;
}

// Small letters without accents, so that "Francais", a catalogue's name, is the same as Qt's "français".
QString Plain(const QString& name) {
  QString letters;
  for (const QChar letter : name.normalized(QString::NormalizationForm_D).toCaseFolded()) {
    if (letter.isLetter()) letters += letter;
  }
  return letters;
}

// The locale of the language with that name; for an unknown one the locale that leaves Qt's texts as they are.
QLocale LocaleOf(const QString& language) {
  for (int number = QLocale::C + 1; number <= QLocale::LastLanguage; ++number) {
    const QLocale locale(static_cast<QLocale::Language>(number));
    if (Plain(locale.nativeLanguageName()) == Plain(language)) return locale;
  }
  return QLocale::c();
}

}  // namespace

bool EnsureApplication(std::string& whyNot) {
  const QCoreApplication* application = QCoreApplication::instance();
  if (application == nullptr) return MakeApplication(whyNot);
  if (qobject_cast<const QApplication*>(application) == nullptr) {
    whyNot = "the host's " + std::string(application->metaObject()->className()) +
             " shows no widgets; it has to be a QApplication, or none at all";
  } else if (application->thread() != QThread::currentThread()) {
    whyNot = "another thread has the QApplication; dialogs are for that thread";
  } else {
    return true;
  }
  return false;
}

void TranslateApplication(const std::string& language) {
  static std::string& inForce = *new std::string;  // the plugin is never unloaded, nor its objects destroyed
  if (!madeHere || inForce == language) return;
  inForce = language;
  static auto* const translator = new QTranslator(qApp);
  QCoreApplication::removeTranslator(translator);
  const QLocale locale = LocaleOf(QString::fromStdString(language));
  const QString folder = QLibraryInfo::path(QLibraryInfo::TranslationsPath);
  if (translator->load(locale, QStringLiteral("qtbase"), QStringLiteral("_"), folder)) {
    QCoreApplication::installTranslator(translator);
  }
}

}  // namespace windowing
