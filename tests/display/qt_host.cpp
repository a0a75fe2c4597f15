// A host with a QApplication and no visible window of its own, which plays the user itself.
//   qt_host MODULE cycles   answers the dialog with Esc, 40 times, and tells what the last 30 left behind
//   qt_host MODULE busy     does so once, while it is never without work of its own
//   qt_host MODULE quit     ends its event loop while the dialog is open
//   qt_host MODULE exit     the same at once, without asking its windows
//   qt_host MODULE core     has a QCoreApplication instead, which can show no dialog
//   qt_host MODULE thread   asks on another thread than that of its application
#include <malloc.h>

#include <QtWidgets>
#include <thread>

#include "display/module_cycle.h"

namespace {

using nvsupport::testing::RunModuleCycle;

void PressEscape() {
  QWidget* dialog = QApplication::activeModalWidget();
  if (dialog == nullptr) return;
  QKeyEvent press(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
  QCoreApplication::sendEvent(dialog, &press);
}

void RunCycles(const char* module) {
  for (int i = 0; i < 10; ++i) RunModuleCycle(module);
  const std::size_t before = mallinfo2().uordblks;
  for (int i = 0; i < 30; ++i) RunModuleCycle(module);
  std::cout << "widgets " << QApplication::allWidgets().size() << std::endl;
  std::cout << "windows " << QGuiApplication::allWindows().size() << std::endl;
  std::cout << "grown " << static_cast<long long>(mallinfo2().uordblks - before) << std::endl;
}

void PostWork() {
  QMetaObject::invokeMethod(qApp, PostWork, Qt::QueuedConnection);
}

}  // namespace

int main(int argc, char** argv) {
  const char* module = argv[1];
  const std::string job = argc == 3 ? argv[2] : "";
  if (job == "core") {
    const QCoreApplication application(argc, argv);
    RunModuleCycle(module);
    return 0;
  }
  QApplication application(argc, argv);
  if (job == "thread") {
    std::thread(RunModuleCycle, module).join();
    return 0;
  }
  QObject::connect(&application, &QCoreApplication::aboutToQuit, [] { std::cout << "quitting " << std::endl; });
  QTimer user;
  QObject::connect(&user, &QTimer::timeout, PressEscape);
  if (job == "cycles" || job == "busy") user.start(1);
  if (job == "busy") PostWork();
  if (job == "quit") QTimer::singleShot(100, [] { QCoreApplication::quit(); });
  if (job == "exit") QTimer::singleShot(100, [] { QCoreApplication::exit(0); });
  QTimer::singleShot(0, [&] {
    job == "cycles" ? RunCycles(module) : RunModuleCycle(module);
    if (user.isActive()) QCoreApplication::quit();
  });
  return QApplication::exec();
}
