// The module in hosts with a QApplication of their own, off screen; the user is played by the host's timer.
#include <gtest/gtest.h>
#include <malloc.h>
#include <nvsupport/nvsupport_module.h>

#include <QtWidgets>
#include <functional>
#include <string>
#include <thread>

#include "soak/host_state.h"
#include "support/temporary_home.h"

namespace {

bool AskForToken(const QWidget* owner = nullptr) {
  NVSupportModule module;
  EXPECT_EQ(NVSupportOpen(&module, NV_MODULE), nullptr);
  module.openSession("Host Test");
  char token[20];
  const soak::HostState host;
  const bool has = module.sessionToken(owner != nullptr ? reinterpret_cast<NVWindow>(owner->winId()) : nullptr, token);
  EXPECT_EQ(host.Difference(), "");
  NVSupportClose(&module);
  return has;
}

struct Host {
  // Runs the event loop and in it the work; meanwhile the user acts on each dialog.
  void Run(const std::function<void()>& work, const std::function<void(QWidget&)>& act) {
    QTimer user;
    user.callOnTimeout([&act] {
      if (QWidget* dialog = QApplication::activeModalWidget()) act(*dialog);
    });
    user.start(1);
    QTimer::singleShot(0, [&work] {
      work();
      QCoreApplication::quit();
    });
    QApplication::exec();
  }

  int argc = 0;
  QApplication application{argc, nullptr};
};

void PressEscape(QWidget& dialog) {
  QKeyEvent press(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
  QCoreApplication::sendEvent(&dialog, &press);
}

void PostWork() {
  QMetaObject::invokeMethod(qApp, PostWork, Qt::QueuedConnection);
}

TEST(HostWithQt, HasNothingLeftOfDialogs) {
  const auto openDialogs = [] {
    for (int i = 0; i < 5; ++i) AskForToken();
    const std::size_t before = mallinfo2().uordblks;
    for (int i = 0; i < 10; ++i) AskForToken();
    // A dialog that stays takes some 20 kB; what Qt keeps for itself is less than one kB a dialog.
    EXPECT_LT(static_cast<long long>(mallinfo2().uordblks - before), 40 * 1024) << "bytes in 10 dialogs";
    EXPECT_TRUE(QApplication::allWidgets().empty());
    EXPECT_TRUE(QGuiApplication::allWindows().empty());
  };
  Host().Run(openDialogs, PressEscape);
}

TEST(HostWithQt, EndsItsDialogWhenItIsNeverIdleOrQuits) {
  const std::pair<const char*, std::function<void(QWidget&)>> ways[] = {
      {"the user presses Esc", PressEscape},
      {"the host closes its windows, as it does before it quits", [](QWidget& dialog) { EXPECT_TRUE(dialog.close()); }},
      {"the host exits without asking its windows", [](QWidget&) { QCoreApplication::exit(0); }},
  };
  for (const auto& [name, act] : ways) {
    Host host;
    PostWork();
    host.Run([way = name] { EXPECT_FALSE(AskForToken()) << way; }, act);
  }
}

TEST(HostWithQt, OwnsADialogByItsTopLevelWindowAndKeepsItsOwnTexts) {
  nvsupport::testing::TemporaryHome home;
  home.WriteUserRegistry("[HKEY_CURRENT_USER\\Software\\Norvane]\n\"Language\"=\"Deutsch\"\n");
  Host host;
  QPixmap picture(16, 16);
  picture.fill(Qt::red);
  QApplication::setWindowIcon(picture);
  QWidget window;
  QWidget panel(&window);
  panel.winId();  // a native window between the two
  const QPushButton button(&panel);
  window.show();
  const QWindow neverShown;
  const auto work = [&] {
    AskForToken(&button);
    QCoreApplication::processEvents();
    EXPECT_EQ(QGuiApplication::focusWindow(), window.windowHandle());
  };
  host.Run(work, [&window](QWidget& dialog) {
    EXPECT_EQ(dialog.windowHandle()->transientParent(), window.windowHandle());
    EXPECT_EQ(dialog.windowModality(), Qt::WindowModal) << "other windows of the host go on";
    EXPECT_EQ(dialog.windowIcon().cacheKey(), QApplication::windowIcon().cacheKey());
    EXPECT_EQ(qApp->findChild<QTranslator*>(), nullptr);
    EXPECT_FALSE(dialog.testAttribute(Qt::WA_QuitOnClose)) << "the host lives on, its windows hidden or not";
    PressEscape(dialog);
  });
}

void ExpectRefusal(const std::string& reason) {
  ::testing::internal::CaptureStderr();
  EXPECT_FALSE(AskForToken());
  const std::string told = ::testing::internal::GetCapturedStderr();
  EXPECT_NE(told.find(reason), std::string::npos) << told;
}

TEST(HostWithQt, IsToldThatACoreApplicationShowsNoDialog) {
  int argc = 0;
  const QCoreApplication application(argc, nullptr);
  ExpectRefusal("the host's QCoreApplication shows no widgets; it has to be a QApplication");
}

TEST(HostWithQt, IsToldThatDialogsAreForTheThreadOfItsApplication) {
  const Host host;
  std::thread(ExpectRefusal, "another thread has the QApplication; dialogs are for that thread").join();
}

}  // namespace
