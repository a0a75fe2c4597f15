// The window of a small host application: sign-in state, map shop products of an area, downloads. Everything goes
// through the public header; the library's own dialogs are owned by this window.
#ifndef NVHOST_GUI_MAIN_WINDOW_H
#define NVHOST_GUI_MAIN_WINDOW_H

#include <QTimer>
#include <QWidget>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "background_download.h"
#include "signal_watch.h"

class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QTableWidget;

class MainWindow : public QWidget {
 public:
  // support: outlives the window. fileHost: server that products are downloaded from.
  MainWindow(const NVSupportModule& support, const std::string& product, const std::string& fileHost);

  // Stops the downloads at the end of the program. False if a silent server keeps one busy: then the program must end
  // by std::_Exit() and leave the library loaded.
  bool EndDownloads();

 private:
  QWidget* MakeAccountBox(const std::string& product);
  QWidget* MakeShopBox();
  QWidget* MakeDownloadBox();

  void ShowAccount(const QString& state);
  void GetToken();
  void Search();
  void StartDownload();
  void BeginDownload();
  void LookAtDownloads();
  void ShowProgress(const WebProgressCounters& counters);
  void ShowResult();
  void Cancel();
  void SetDownloading(bool downloading);

  const NVSupportModule& support;
  std::string fileHost;
  // While there are downloads:
  QTimer look;
  std::optional<nvhost::SignalWatch> signalWatch;
  QString file;                     // the local file
  std::optional<QString> notBegun;  // what to download as soon as that file is free
  std::unique_ptr<nvhost::BackgroundDownload> download;
  std::vector<std::unique_ptr<nvhost::BackgroundDownload>> cancelled;  // until they have ended

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
