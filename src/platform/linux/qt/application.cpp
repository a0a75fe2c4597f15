#include "application.h"

#include <QApplication>
#include <QThread>
#include <cerrno>
#include <cstddef>
#include <new>

#include "host_state.h"
#include "usable_platform.h"

namespace windowing {
namespace {

bool MakeApplication() {
  const HostState kept;
  if (!HasUsablePlatform()) return false;
  // Qt keeps references to both. The program's name becomes the windows' class.
  static int argumentCount = 1;
  static char* arguments[] = {program_invocation_name, nullptr};
  // Never destroyed: neither a plain host nor the loader gives it a moment at which that would be safe.
  alignas(QApplication) static std::byte room[sizeof(QApplication)];
  new (room) QApplication(argumentCount, arguments);
  // The end of the dialogs is not the end of the program.
  QApplication::setQuitOnLastWindowClosed(false);
  QCoreApplication::setQuitLockEnabled(false);
  return true;
}

}  // namespace

bool EnsureApplication() {
  const QCoreApplication* application = QCoreApplication::instance();
  if (application == nullptr) return MakeApplication();
  return qobject_cast<const QApplication*>(application) != nullptr && application->thread() == QThread::currentThread();
}

}  // namespace windowing
