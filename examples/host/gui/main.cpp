// nvhost-gui: a small host application with a window, which owns the library's dialogs. `nvhost gui` starts it.
#include <CLI/CLI.hpp>

#include <unistd.h>

#include <QApplication>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <string_view>

#include "commands.h"
#include "library.h"
#include "main_window.h"

namespace {

// Qt aborts a program that has no screen, after it has printed why.
void OnAbort(int) {
  constexpr std::string_view text = "nvhost-gui: there is no screen for a window\n";
  static_cast<void>(!write(STDERR_FILENO, text.data(), text.size()));
  _exit(nvhost::noScreen);
}

int Run(int argc, char** argv) {
  CLI::App app("A window of a host application on the nvsupport library.", "nvhost-gui");
  std::string library = nvhost::FindLibrary();
  std::string product = "Map Viewer";
  std::string host = NV_SERVICE_HOST;
  app.set_version_flag("--version", "nvhost-gui " NVSUPPORT_VERSION);
  app.failure_message(
      [](const CLI::App*, const CLI::Error& error) { return "nvhost-gui: " + std::string(error.what()) + '\n'; });
  app.add_option("--library", library, "The support library to load")->type_name("PATH")->capture_default_str();
  app.add_option("--product", product, "Product whose settings to use")->type_name("NAME")->capture_default_str();
  app.add_option("--host", host, "Server that products are downloaded from")->type_name("HOST")->capture_default_str();
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? nvhost::done : nvhost::wrongArguments;
  }
  std::signal(SIGABRT, OnAbort);
  QApplication application(argc, argv);
  std::signal(SIGABRT, SIG_DFL);
  const nvhost::Library support(library);
  support.Functions().openSession(product.c_str());
  MainWindow window(support.Functions(), product, host);
  window.show();
  const int exitCode = QApplication::exec();
  if (!window.EndDownloads()) std::_Exit(exitCode);
  return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const nvhost::Failure& failure) {
    std::fprintf(stderr, "nvhost-gui: %s\n", failure.what());
    return failure.code;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "nvhost-gui: %s\n", error.what());
    return nvhost::noModule;
  }
}
