// nvcatalogue preview: shows the library's dialogs and messages with a catalogue that is being made. It is a program of
// its own, so that nvcatalogue needs no toolkit. The windows are the library's own, on its real display, but can reach
// neither the service nor the user's settings.
//
// nvcatalogue-preview CATALOGUE WINDOW FOLDER   an empty WINDOW: all; an empty FOLDER: no pictures
#include <QApplication>
#include <QGraphicsColorizeEffect>
#include <QTimer>
#include <QWidget>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "account/service_manager.h"
#include "language/format_check.h"
#include "language/translation_catalogue.h"
#include "platform/linux/windowing/display_selection.h"
#include "source_texts.h"
#include "ui/message.h"

// The display is linked with this program, so the library need not load it from a file.
extern "C" windowing::Display* nvsupport_open_display(windowing::DisplayEvents* events, std::string& whyNot);

NvOpenDisplay windowing::FindDisplay(std::string&) {
  return &nvsupport_open_display;
}

namespace nvsupport {
namespace {

namespace fs = std::filesystem;

enum ExitCode { clean = 0, findings = 1, unusable = 2, notWritten = 3 };

struct Window {
  std::string name;   // of its picture file
  std::string group;  // the word on the command line
  std::function<void()> open;
};

// Formats are filled in with a number.
void ShowText(const std::string& text) {
  if (HaveSameConversions(text, "%d")) {
    ShowMessageFormat(nullptr, MB_ICONERROR, text.c_str(), 1);
  } else {
    ShowMessage(nullptr, MB_ICONERROR, text);
  }
}

std::vector<Window> AllWindows(CVServiceManager& session) {
  std::vector<Window> windows = {
      {"sign-in", "sign-in", [&session] { session.Login(nullptr); }},
      {"create-account", "create-account", [&session] { session.CreateAccount(nullptr); }},
      {"computer-name", "computer-name", [&session] { session.SetDeviceName(nullptr); }},
  };
  int number = 0;
  for (const std::string_view text : MessageTexts()) {
    windows.push_back({"message-" + std::to_string(++number), "messages", [text] { ShowText(std::string(text)); }});
  }
  return windows;
}

// Makes each text that does not fit red, and prints it. The display gives such a text a tool tip, which tells it here.
bool MarkCutTexts(const std::string& name, const QWidget& window) {
  bool isCut = false;
  for (QWidget* control : window.findChildren<QWidget*>()) {
    const bool isOfTemplate = !control->objectName().isEmpty();  // else it is a part of another control
    if (!isOfTemplate || control->toolTip().isEmpty()) continue;
    isCut = true;
    auto* const red = new QGraphicsColorizeEffect(control);
    red->setColor(Qt::red);
    control->setGraphicsEffect(red);
    std::printf("%s: does not fit: %s\n", name.c_str(), control->toolTip().toStdString().c_str());
  }
  return isCut;
}

// Opens the windows one after the other. Each waits for the user or, if there is a folder, saves a picture there.
int Show(const std::vector<Window>& windows, const std::string& group, const std::string& folder) {
  int exitCode = clean;
  for (const Window& window : windows) {
    if (!group.empty() && window.group != group) continue;
    QTimer::singleShot(0, [&] {
      QWidget* const shown = QApplication::activeModalWidget();
      if (MarkCutTexts(window.name, *shown) && exitCode == clean) exitCode = findings;
      if (folder.empty()) return;
      const std::string picture = fs::path(folder) / (window.name + ".png");
      if (!shown->grab().save(QString::fromStdString(picture))) {
        std::fprintf(stderr, "nvcatalogue: %s cannot be written\n", picture.c_str());
        exitCode = notWritten;
      }
      shown->close();
    });
    window.open();
  }
  return exitCode;
}

// So that no settings and no list of missing texts are read or written, no page is opened and no service asked.
void KeepApart(bool onScreen) {
  setenv("XDG_DATA_HOME", "/dev/null", 1);
  setenv("XDG_DOCUMENTS_DIR", "/dev/null", 1);
  setenv("PATH", "/dev/null", 1);
  setenv("NV_CONNECT_TO", NV_SERVICE_HOST ":80:127.0.0.1:1," NV_SERVICE_HOST ":443:127.0.0.1:1", 1);
  if (onScreen) return;
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  setenv("QT_LOGGING_RULES", "*.warning=false", 1);  // off screen Qt prints a line for each window
}

int Run(const fs::path& catalogue, const std::string& group, const std::string& folder) {
  KeepApart(folder.empty());
  if (!translations.LoadCatalogueFile(catalogue)) {
    std::fprintf(stderr, "nvcatalogue: %s cannot be read, or has no entry\n", catalogue.c_str());
    return unusable;
  }
  SetMessageCaption(std::string(Translate("Account Manager")));
  const std::string language = catalogue.stem().extension();  // with its dot
  if (!language.empty()) platform::SetDisplayLanguage(language.substr(1));
  std::string whyNot;
  if (windowing::OpenDisplay(whyNot) == nullptr) {
    std::fprintf(stderr, "nvcatalogue: there is no screen (%s); pictures, by --png, need none\n", whyNot.c_str());
    return unusable;
  }
  if (!folder.empty()) fs::create_directories(folder);
  CServiceManager session("Preview");
  const int exitCode = Show(AllWindows(session), group, folder);
  return std::fflush(stdout) == 0 ? exitCode : notWritten;
}

}  // namespace
}  // namespace nvsupport

int main(int argc, char** argv) {
  if (argc != 4) return nvsupport::unusable;
  try {
    return nvsupport::Run(argv[1], argv[2], argv[3]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "nvcatalogue: %s\n", error.what());
    return nvsupport::unusable;
  }
}
