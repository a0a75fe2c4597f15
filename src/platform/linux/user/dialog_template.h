// An extended dialog template (DIALOGEX) as its compiled form gives it.
#ifndef NVSUPPORT_PLATFORM_LINUX_USER_DIALOG_TEMPLATE_H
#define NVSUPPORT_PLATFORM_LINUX_USER_DIALOG_TEMPLATE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "display.h"
#include "resources.h"

namespace user {

// In dialog units.
struct UnitRect {
  std::int16_t x;
  std::int16_t y;
  std::int16_t width;
  std::int16_t height;
};

struct ControlTemplate {
  ControlKind kind;
  int id;
  LONG_PTR style;
  UnitRect place;
  std::string text;  // UTF-8
};

struct DialogTemplate {
  LONG_PTR style;
  UnitRect place;
  std::string title;  // UTF-8
  std::vector<ControlTemplate> controls;
};

// Nothing if the bytes are no template, end too early, or hold a control of a kind that the core does not have.
std::optional<DialogTemplate> ParseDialogTemplate(Bytes bytes);

}  // namespace user

#endif
