// nvhost-gui: a small host application with a window, which owns the library's dialogs. `nvhost gui` starts it.
#include <CLI/CLI.hpp>

#include <QApplication>
#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <string>

#include "commands.h"
#include "main_window.h"

namespace {

// Qt aborts a program that has nowhere to draw.
bool NamesScreen() {
  constexpr std::array variables = {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "DISPLAY"};
  return std::any_of(variables.begin(), variables.end(),
                     [](const char* name) { return !qEnvironmentVariableIsEmpty(name); });
}

int Run(int argc, char** argv) {
  CLI::App app("A window of a host application on the nvsupport library.", "nvhost-gui");
  std::string library = nvhost::FindLibrary();
  std::string product = "Map Viewer";
  std::string host = NV_SERVICE_HOST;
  app.add_option("--library", library, "The support library to load")->type_name("PATH")->capture_default_str();
  app.add_option("--product", product, "Product whose settings to use")->type_name("NAME")->capture_default_str();
  app.add_option("--host", host, "Server that products are downloaded from")->type_name("HOST")->capture_default_str();
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? nvhost::kDone : nvhost::kWrongArguments;
  }
  if (!NamesScreen()) throw nvhost::Failure(nvhost::kNoScreen, "no screen for a window; DISPLAY is not set");
  QApplication application(argc, argv);
  const nvhost::NvSupport support(library);
  support.openSession(product.c_str());
  MainWindow window(support, product, host);
  window.show();
  return QApplication::exec();
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
    return nvhost::kNoModule;
  }
}
