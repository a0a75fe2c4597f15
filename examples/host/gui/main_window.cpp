#include "main_window.h"

#include <QApplication>
#include <QCloseEvent>
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
#include <array>
#include <optional>

namespace {

// "latitude, longitude" in degrees; nothing if the text is no point of the earth.
std::optional<MapShopPoint> ParsePoint(const QString& text) {
  const QStringList parts = text.split(',');
  if (parts.size() != 2) return std::nullopt;
  bool latitudeGood = false;
  bool longitudeGood = false;
  const MapShopPoint point{parts[0].trimmed().toDouble(&latitudeGood), parts[1].trimmed().toDouble(&longitudeGood)};
  if (!latitudeGood || !longitudeGood) return std::nullopt;
  // Written so that NaN is refused too.
  if (!(point.latitude >= -90 && point.latitude <= 90)) return std::nullopt;
  if (!(point.longitude >= -400 && point.longitude <= 400)) return std::nullopt;
  return point;
}

// Of a transfer; bytes stay exact in the counters.
constexpr int kProgressSteps = 1000;

enum Column { kTitle, kText, kFile, kColumnCount };

}  // namespace

MainWindow::MainWindow(const nvhost::NvSupport& library, const std::string& product, const std::string& downloadHost)
    : support(library), fileHost(downloadHost) {
  setWindowTitle("nvhost");
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(MakeAccountBox(product));
  layout->addWidget(MakeShopBox(), 1);
  layout->addWidget(MakeDownloadBox());
  resize(720, 520);
  SetDownloading(false);
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
  area->addWidget(new QLabel("Area, latitude and longitude from"));
  area->addWidget(northWest);
  area->addWidget(new QLabel("to"));
  area->addWidget(southEast);
  area->addWidget(searchButton);
  products = new QTableWidget(0, kColumnCount);
  products->setObjectName("products");
  products->setHorizontalHeaderLabels({"Product", "Description", "File"});
  products->horizontalHeader()->setSectionResizeMode(kTitle, QHeaderView::Stretch);
  products->horizontalHeader()->setSectionResizeMode(kText, QHeaderView::ResizeToContents);
  products->horizontalHeader()->setSectionResizeMode(kFile, QHeaderView::ResizeToContents);
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
  connect(downloadButton, &QPushButton::clicked, this, [this] { Download(); });
  connect(cancelButton, &QPushButton::clicked, this, [this] { cancelled = true; });
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
  const std::array<MapShopPoint, 2> area{*first, *second};
  NVMapShopHandle results = support.search(area.data(), static_cast<int32_t>(area.size()));
  MapShopItem item;
  while (support.nextItem(results, &item)) {
    const int row = products->rowCount();
    products->insertRow(row);
    products->setItem(row, kTitle, new QTableWidgetItem(QString::fromLocal8Bit(item.title)));
    products->setItem(row, kText, new QTableWidgetItem(QString::fromLocal8Bit(item.shortText)));
    products->setItem(row, kFile, new QTableWidgetItem(QString::fromLocal8Bit(item.fileReference)));
  }
  support.closeSearch(results);
  status->setText(products->rowCount() == 0 ? QString("No products: none on offer there, or the shop is out of reach.")
                                            : QString("%1 products").arg(products->rowCount()));
  if (products->rowCount() > 0) products->selectRow(0);
  SetDownloading(false);
}

void MainWindow::Download() {
  const int row = products->currentRow();
  if (row < 0) return;
  const QString path = products->item(row, kFile)->text();
  const QString file = QFileDialog::getSaveFileName(this, "Download to", path.section('/', -1));
  if (file.isEmpty()) return;
  SetDownloading(true);
  const auto callback = [](void* self) { return static_cast<MainWindow*>(self)->OnProgress(); };
  const bool good = support.download(fileHost.c_str(), path.toLocal8Bit().constData(), file.toLocal8Bit().constData(),
                                     callback, this, &counters);
  SetDownloading(false);
  if (good) progress->setValue(kProgressSteps);
  status->setText(good        ? QString("%1: %2 bytes").arg(file).arg(counters.done)
                  : cancelled ? QString("Cancelled.")
                              : QString("The file could not be downloaded."));
  if (closing) close();
}

bool MainWindow::OnProgress() {
  if (counters.total > 0) {
    progress->setRange(0, kProgressSteps);
    progress->setValue(static_cast<int>(counters.done * kProgressSteps / static_cast<uint64_t>(counters.total)));
  } else {
    progress->setRange(0, 0);  // length unknown: a busy bar
  }
  QApplication::processEvents();
  return !cancelled;
}

void MainWindow::SetDownloading(bool active) {
  downloading = active;
  if (active) {
    cancelled = false;
    counters = {};
    status->setText("Downloading ...");
  }
  // One call of the library at a time: what starts another waits until the transfer is over.
  tokenButton->setEnabled(!active);
  searchButton->setEnabled(!active);
  downloadButton->setEnabled(!active && products->rowCount() > 0);
  cancelButton->setEnabled(active);
  progress->setRange(0, kProgressSteps);
  progress->setValue(0);
}

void MainWindow::closeEvent(QCloseEvent* event) {
  cancelled = true;
  // A transfer runs above this window's own loop: it stops first, then the window closes.
  closing = downloading;
  event->setAccepted(!downloading);
}
