#include "host_state.h"

#include <dlfcn.h>

#include <clocale>
#include <cstdlib>

namespace windowing {
namespace {

// The desktop gives these to the program that it starts, so that it knows the program's first window. Qt would use them
// up for a dialog; they are the host's.
constexpr const char* startupVariables[] = {"DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN"};
constexpr const char* sessionVariable = "SESSION_MANAGER";
constexpr const char* themeVariable = "QT_QPA_PLATFORMTHEME";

// Versions of GTK that fail when Qt's desktop theme loads another version of it beside them.
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
  // The desktop asks each program before a session ends. The host answers for itself: between dialogs nobody could.
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
