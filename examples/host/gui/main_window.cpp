#include "main_window.h"

#include <QApplication>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <utility>

#include "commands.h"

namespace {

// Reads "latitude, longitude" in degrees; nothing if the text is no such point.
std::optional<MapShopPoint> ParsePoint(const QString& text) {
  const QStringList parts = text.split(',');
  if (parts.size() != 2) return std::nullopt;
  bool latitudeGood = false;
  bool longitudeGood = false;
  const MapShopPoint point{parts[0].trimmed().toDouble(&latitudeGood), parts[1].trimmed().toDouble(&longitudeGood)};
  if (!latitudeGood || !longitudeGood) return std::nullopt;
  // Written so that a NaN fails, too.
  if (!(point.latitude >= -90 && point.latitude <= 90)) return std::nullopt;
  if (!(point.longitude >= -400 && point.longitude <= 400)) return std::nullopt;
  return point;
}

// Of the progress bar; the exact bytes are in the counters.
constexpr int progressSteps = 1000;

using namespace std::chrono_literals;

// Room for a coordinate such as "47, 15".
void KeepReadable(QLineEdit& edit) {
  edit.setMinimumWidth(edit.minimumSizeHint().width() + edit.fontMetrics().horizontalAdvance("00, 00"));
}

constexpr auto lookPause = 100ms;
constexpr auto stopPatience = 500ms;  // at the end of the program

enum Column { titleColumn, textColumn, fileColumn, columnCount };

}  // namespace

MainWindow::MainWindow(const NVSupportModule& library, const std::string& product, const std::string& downloadHost)
    : support(library), fileHost(downloadHost) {
  setWindowTitle("nvhost");
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(MakeAccountBox(product));
  layout->addWidget(MakeShopBox(), 1);
  layout->addWidget(MakeDownloadBox());
  resize(720, 520);
  SetDownloading(false);
  look.setInterval(lookPause);
  connect(&look, &QTimer::timeout, this, [this] { LookAtDownloads(); });
}

QWidget* MainWindow::MakeAccountBox(const std::string& product) {
  auto* box = new QGroupBox("Account for " + QString::fromStdString(product));
  auto* layout = new QHBoxLayout(box);
  account = new QLabel;
  account->setObjectName("account");
  account->setTextFormat(Qt::PlainText);
  tokenButton = new QPushButton("Get session &token");
  tokenButton->setObjectName("token");
  layout->addWidget(account, 1);
  layout->addWidget(tokenButton);
  connect(tokenButton, &QPushButton::clicked, this, [this] { GetToken(); });
  ShowAccount("no token yet");
  return box;
}

QWidget* MainWindow::MakeShopBox() {
  auto* box = new QGroupBox("Map shop");
  auto* layout = new QVBoxLayout(box);
  auto* area = new QHBoxLayout;
  northWest = new QLineEdit("55, 5");
  northWest->setObjectName("northWest");
  southEast = new QLineEdit("47, 15");
  southEast->setObjectName("southEast");
  searchButton = new QPushButton("&Search");
  searchButton->setObjectName("search");
  for (const auto& [name, edit] : {std::pair("Latitude and longitude &from", northWest), {"t&o", southEast}}) {
    auto* label = new QLabel(name);
    label->setBuddy(edit);
    KeepReadable(*edit);
    area->addWidget(label);
    area->addWidget(edit);
  }
  area->addWidget(searchButton);
  products = new QTableWidget(0, columnCount);
  products->setObjectName("products");
  products->setHorizontalHeaderLabels({"Product", "Description", "File"});
  products->horizontalHeader()->setSectionResizeMode(titleColumn, QHeaderView::Stretch);
  products->horizontalHeader()->setSectionResizeMode(textColumn, QHeaderView::ResizeToContents);
  products->horizontalHeader()->setSectionResizeMode(fileColumn, QHeaderView::ResizeToContents);
  products->setSelectionBehavior(QAbstractItemView::SelectRows);
  products->setSelectionMode(QAbstractItemView::SingleSelection);
  products->setEditTriggers(QAbstractItemView::NoEditTriggers);
  layout->addLayout(area);
  layout->addWidget(products);
  connect(searchButton, &QPushButton::clicked, this, [this] { Search(); });
  for (const QLineEdit* corner : {northWest, southEast}) {
    connect(corner, &QLineEdit::returnPressed, searchButton, &QPushButton::click);
  }
  return box;
}

QWidget* MainWindow::MakeDownloadBox() {
  auto* box = new QGroupBox("Download");
  auto* layout = new QVBoxLayout(box);
  auto* row = new QHBoxLayout;
  progress = new QProgressBar;
  progress->setObjectName("progress");
  downloadButton = new QPushButton("&Download");
  downloadButton->setObjectName("download");
  cancelButton = new QPushButton("&Cancel");
  cancelButton->setObjectName("cancel");
  status = new QLabel("Search for an area, then select a product.");
  status->setObjectName("status");
  status->setTextFormat(Qt::PlainText);
  row->addWidget(progress, 1);
  row->addWidget(downloadButton);
  row->addWidget(cancelButton);
  layout->addLayout(row);
  layout->addWidget(status);
  connect(downloadButton, &QPushButton::clicked, this, [this] { StartDownload(); });
  connect(cancelButton, &QPushButton::clicked, this, [this] { Cancel(); });
  return box;
}

void MainWindow::ShowAccount(const QString& state) {
  const QString userId = QString::fromLocal8Bit(support.userId());
  account->setText((userId.isEmpty() ? "No user ID" : "User ID: " + userId) + ", " + state);
}

void MainWindow::GetToken() {
  std::array<char, 20> token{};
  const bool good = support.sessionToken(reinterpret_cast<NVWindow>(winId()), token.data());
  ShowAccount(good ? "session token " + QString::fromLatin1(token.data()) : "no token");
}

void MainWindow::Search() {
  const auto first = ParsePoint(northWest->text());
  const auto second = ParsePoint(southEast->text());
  products->setRowCount(0);
  if (!first || !second) {
    status->setText("An area is two points, each a latitude (-90 to 90) and a longitude (-400 to 400).");
    return;
  }
  // The search runs on this thread, which draws nothing until it ends.
  status->setText("Searching ...");
  repaint();
  const std::array<MapShopPoint, 2> area{*first, *second};
  NVMapShopHandle results = support.search(area.data(), static_cast<int32_t>(area.size()));
  MapShopItem item;
  while (support.getNext(results, &item)) {
    const int row = products->rowCount();
    products->insertRow(row);
    products->setItem(row, titleColumn, new QTableWidgetItem(QString::fromLocal8Bit(item.title)));
    products->setItem(row, textColumn, new QTableWidgetItem(QString::fromLocal8Bit(item.shortText)));
    products->setItem(row, fileColumn, new QTableWidgetItem(QString::fromLocal8Bit(item.fileReference)));
  }
  support.closeSearch(results);
  status->setText(products->rowCount() == 0 ? QString("No products: none on offer there, or the shop is out of reach.")
                                            : QString("%1 products").arg(products->rowCount()));
  if (products->rowCount() > 0) products->selectRow(0);
  downloadButton->setEnabled(!cancelButton->isEnabled() && products->rowCount() > 0);
}

void MainWindow::StartDownload() {
  const int row = products->currentRow();
  if (row < 0) return;
  const QString path = products->item(row, fileColumn)->text();
  file = QFileDialog::getSaveFileName(this, "Download to", path.section('/', -1));
  if (file.isEmpty()) return;
  notBegun = path;
  SetDownloading(true);
  signalWatch.emplace();
  look.start();
  BeginDownload();
}

// A download that was cancelled keeps its file until it ends, which is when the server sends its next bytes.
void MainWindow::BeginDownload() {
  const std::string target = file.toLocal8Bit().toStdString();
  const bool isTaken =
      std::any_of(cancelled.begin(), cancelled.end(), [&](const auto& one) { return one->File() == target; });
  status->setText(isTaken ? "Waiting for the end of the download that was cancelled ..." : "Downloading ...");
  if (isTaken) return;
  const std::string path = notBegun->toLocal8Bit().toStdString();
  notBegun.reset();
  download = std::make_unique<nvhost::BackgroundDownload>(support, fileHost, path, target);
}

void MainWindow::LookAtDownloads() {
  std::erase_if(cancelled, [](const auto& one) { return one->EndsWithin(0ms); });
  if (notBegun) {
    BeginDownload();
  } else if (download && download->EndsWithin(0ms)) {
    ShowResult();
  } else if (download) {
    ShowProgress(download->Progress());
  }
  if (signalWatch->Seen() != 0) QApplication::exit(nvhost::interruptedBy + signalWatch->Seen());
  if (download || notBegun || !cancelled.empty()) return;
  look.stop();
  signalWatch.reset();
}

void MainWindow::ShowProgress(const WebProgressCounters& counters) {
  const bool known = counters.total > 0;
  progress->setRange(0, known ? progressSteps : 0);  // length unknown: a busy bar
  if (!known) return;
  progress->setValue(static_cast<int>(counters.done * progressSteps / static_cast<uint64_t>(counters.total)));
}

void MainWindow::ShowResult() {
  using Outcome = nvhost::BackgroundDownload::Outcome;
  const Outcome outcome = download->Result();
  const WebProgressCounters bytes = download->Progress();
  download.reset();
  SetDownloading(false);
  if (outcome == Outcome::complete) progress->setValue(progressSteps);
  status->setText(outcome == Outcome::complete ? QString("%1: %L2 bytes").arg(file).arg(bytes.done)
                  : outcome == Outcome::incomplete
                      ? QString("Incomplete: %L1 of %L2 bytes; nothing was kept.").arg(bytes.done).arg(bytes.total)
                      : QString("The file could not be downloaded."));
}

void MainWindow::Cancel() {
  notBegun.reset();
  if (download) {
    download->Stop();
    cancelled.push_back(std::move(download));
  }
  status->setText("Cancelled.");
  SetDownloading(false);
}

void MainWindow::SetDownloading(bool active) {
  downloadButton->setEnabled(!active && products->rowCount() > 0);
  cancelButton->setEnabled(active);
  progress->setRange(0, progressSteps);
  progress->setValue(0);
}

bool MainWindow::EndDownloads() {
  if (download) Cancel();
  bool ended = true;
  for (const auto& one : cancelled) {
    if (one->EndsWithin(stopPatience)) continue;
    one->Abandon();
    ended = false;
  }
  return ended;
}
