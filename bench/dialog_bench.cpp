// From the call to the dialog on the screen, beside a bare QDialog of the same content; and what the module costs a
// host that opens no window, beside the libraries that it would load. On DISPLAY if there is one, else off screen.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QWindow>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "resources/resource_ids.h"
#include "ui/dialog.h"

namespace nvsupport {
namespace {

using Clock = std::chrono::steady_clock;

// Stops the clock when a window is exposed, and closes it then.
class ExposeWatch final : public QObject {
 public:
  ExposeWatch() {
    qApp->installEventFilter(this);
    closer.setSingleShot(true);
    connect(&closer, &QTimer::timeout, [] {
      if (QWidget* dialog = QApplication::activeModalWidget()) dialog->close();
    });
  }
  double Seconds() const { return std::chrono::duration<double>(exposed - start).count(); }

 protected:
  bool eventFilter(QObject* object, QEvent* event) override {
    const auto* window = qobject_cast<QWindow*>(object);
    if (event->type() != QEvent::Expose || window == nullptr || !window->isExposed() || seen) return false;
    seen = true;
    exposed = Clock::now();
    closer.start(0);
    return false;
  }

 private:
  bool seen = false;
  QTimer closer;
  Clock::time_point start = Clock::now();
  Clock::time_point exposed = start;
};

void EnsureApplication() {
  if (qEnvironmentVariable("DISPLAY").isEmpty()) qputenv("QT_QPA_PLATFORM", "offscreen");
  static int argumentCount = 1;
  static char program[] = "nvsupport-bench";
  static char* arguments[] = {program, nullptr};
  static auto* application = new QApplication(argumentCount, arguments);
  benchmark::DoNotOptimize(application);
}

struct Piece {
  QByteArray kind;
  QString text;
  QRect place;
};

// What the library's dialog consists of, read off its window.
std::vector<Piece> PiecesOfSignIn() {
  std::vector<Piece> pieces;
  QTimer reader;
  reader.setSingleShot(true);
  QObject::connect(&reader, &QTimer::timeout, [&pieces] {
    QWidget* window = QApplication::activeModalWidget();
    for (const QWidget* child : window->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
      const char* kind = "QLineEdit";
      if (qobject_cast<const QLabel*>(child) != nullptr) kind = "QLabel";
      if (qobject_cast<const QPushButton*>(child) != nullptr) kind = "QPushButton";
      if (qobject_cast<const QCheckBox*>(child) != nullptr) kind = "QCheckBox";
      pieces.push_back({kind, child->property("text").toString(), child->geometry()});
    }
    window->close();
  });
  reader.start(0);
  Dialog(IDD_SIGN_IN).run(nullptr);
  return pieces;
}

QWidget* MakeBare(const Piece& piece, QWidget* parent) {
  if (piece.kind == "QLineEdit") return new QLineEdit(piece.text, parent);
  if (piece.kind == "QPushButton") return new QPushButton(piece.text, parent);
  if (piece.kind == "QCheckBox") return new QCheckBox(piece.text, parent);
  auto* label = new QLabel(piece.text, parent);
  label->setWordWrap(true);
  return label;
}

void DialogOpenLibrary(benchmark::State& state) {
  EnsureApplication();
  for (auto _ : state) {
    const ExposeWatch watch;
    Dialog(IDD_SIGN_IN).run(nullptr);
    state.SetIterationTime(watch.Seconds());
  }
}
BENCHMARK(DialogOpenLibrary)->Name("dialog_open/nvsupport")->UseManualTime()->Unit(benchmark::kMillisecond);

void DialogOpenBare(benchmark::State& state) {
  EnsureApplication();
  const std::vector<Piece> pieces = PiecesOfSignIn();
  for (auto _ : state) {
    const ExposeWatch watch;
    QDialog dialog;
    for (const Piece& piece : pieces) MakeBare(piece, &dialog)->setGeometry(piece.place);
    dialog.exec();
    state.SetIterationTime(watch.Seconds());
  }
}
BENCHMARK(DialogOpenBare)->Name("dialog_open/bare_qdialog")->UseManualTime()->Unit(benchmark::kMillisecond);

void Load(benchmark::State& state, const char* library) {
  double residentKilobytes = 0;
  double toolkitMapped = 0;
  for (auto _ : state) {
    const std::string command = std::string(NV_LOAD_PROBE) + " '" + library + "'";
    std::FILE* probe = popen(command.c_str(), "r");
    double milliseconds = 0;
    if (probe == nullptr || std::fscanf(probe, "%lf %lf %lf", &milliseconds, &residentKilobytes, &toolkitMapped) != 3) {
      state.SkipWithError("the probe failed");
    }
    if (probe != nullptr) pclose(probe);
    state.SetIterationTime(milliseconds / 1e3);
  }
  state.counters["resident_kB"] = residentKilobytes;
  state.counters["qt_mapped"] = toolkitMapped;
}
BENCHMARK_CAPTURE(Load, nvsupport, NV_MODULE)
    ->Name("module_load")
    ->UseManualTime()
    ->Iterations(50)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Load, libcurl, "libcurl.so.4")
    ->Name("module_load_libcurl_alone")
    ->UseManualTime()
    ->Iterations(50)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Load, qt, "libQt6Widgets.so.6")
    ->Name("module_load_qt_alone")
    ->UseManualTime()
    ->Iterations(50)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace nvsupport
