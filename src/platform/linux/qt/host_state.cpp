#include "host_state.h"

#include <dlfcn.h>

#include <clocale>
#include <cstdlib>

namespace windowing {
namespace {

// By these a desktop knows the program that it starts. Qt would use them, but that program is the host.
constexpr const char* startupVariables[] = {"DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN"};
constexpr const char* sessionVariable = "SESSION_MANAGER";
constexpr const char* themeVariable = "QT_QPA_PLATFORMTHEME";

// Versions of a toolkit that fail when Qt's desktop theme loads another version beside them.
constexpr const char* otherToolkits[] = {"libgtk-x11-2.0.so.0", "libgtk-4.so.1"};

bool IsLoaded(const char* library) {
  void* handle = dlopen(library, RTLD_LAZY | RTLD_NOLOAD);
  if (handle != nullptr) dlclose(handle);
  return handle != nullptr;
}

bool HostUsesOtherToolkit() {
  for (const char* library : otherToolkits) {
    if (IsLoaded(library)) return true;
  }
  return false;
}

// The handler in force can only be read by replacing it.
XErrorHandler CurrentXErrorHandler() {
  const XErrorHandler handler = XSetErrorHandler(nullptr);
  XSetErrorHandler(handler);
  return handler;
}

}  // namespace

HostState::HostState() : locale(std::setlocale(LC_ALL, nullptr)), xErrorHandler(CurrentXErrorHandler()) {
  for (const char* name : startupVariables) Keep(name);
  // At the end of the desktop session the host answers for itself; this application could not answer between dialogs.
  Keep(sessionVariable);
  unsetenv(sessionVariable);
  Keep(themeVariable);
  if (std::getenv(themeVariable) == nullptr && HostUsesOtherToolkit()) setenv(themeVariable, "generic", 1);
}

HostState::~HostState() {
  for (const Variable& variable : variables) {
    if (variable.value) {
      setenv(variable.name, variable.value->c_str(), 1);
    } else {
      unsetenv(variable.name);
    }
  }
  XSetErrorHandler(xErrorHandler);
  std::setlocale(LC_ALL, locale.c_str());
}

void HostState::Keep(const char* name) {
  const char* value = std::getenv(name);
  variables.push_back({name, value != nullptr ? std::optional<std::string>(value) : std::nullopt});
}

}  // namespace windowing
