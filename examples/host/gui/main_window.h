// The window of a small host application: sign-in state, map shop products of an area, downloads. Everything goes
// through the public header; the library's own dialogs are owned by this window.
#ifndef NVHOST_GUI_MAIN_WINDOW_H
#define NVHOST_GUI_MAIN_WINDOW_H

#include <nvsupport/nvsupport.h>

#include <QWidget>
#include <string>

#include "nvsupport_module.h"

class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QTableWidget;

class MainWindow : public QWidget {
 public:
  // support: outlives the window. fileHost: server that products are downloaded from.
  MainWindow(const nvhost::NvSupport& support, const std::string& product, const std::string& fileHost);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  QWidget* MakeAccountBox(const std::string& product);
  QWidget* MakeShopBox();
  QWidget* MakeDownloadBox();

  void ShowAccount(const QString& state);
  void GetToken();
  void Search();
  void Download();
  // Called between chunks of a download: shows the progress and lets the user press Cancel.
  bool OnProgress();
  void SetDownloading(bool downloading);

  const nvhost::NvSupport& support;
  std::string fileHost;
  WebProgressCounters counters{};
  bool downloading = false;
  bool cancelled = false;
  bool closing = false;  // as soon as the transfer has stopped

  QLabel* account = nullptr;
  QLineEdit* northWest = nullptr;
  QLineEdit* southEast = nullptr;
  QTableWidget* products = nullptr;
  QLabel* status = nullptr;
  QProgressBar* progress = nullptr;
  QPushButton* tokenButton = nullptr;
  QPushButton* searchButton = nullptr;
  QPushButton* downloadButton = nullptr;
  QPushButton* cancelButton = nullptr;
};

#endif
