// Making a QApplication changes the locale, the environment and the X error handler of the whole process. This object
// saves them for the host when it is made, and restores them when it goes.
#ifndef NVSUPPORT_PLATFORM_LINUX_QT_HOST_STATE_H
#define NVSUPPORT_PLATFORM_LINUX_QT_HOST_STATE_H

#include <X11/Xlib.h>

#include <optional>
#include <string>
#include <vector>

namespace windowing {

class HostState {
 public:
  HostState();
  ~HostState();
  HostState(const HostState&) = delete;
  HostState& operator=(const HostState&) = delete;

 private:
  struct Variable {
    const char* name;
    std::optional<std::string> value;  // nothing: was not set
  };

  void Keep(const char* name);

  std::string locale;
  XErrorHandler xErrorHandler;
  std::vector<Variable> variables;
};

}  // namespace windowing

#endif
