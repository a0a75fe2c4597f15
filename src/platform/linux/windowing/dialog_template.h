// Extended dialog templates (DIALOGEX): finds them in a compiled resource script (.res) by module and id, reads them,
// and turns dialog units into pixels.
#ifndef NVSUPPORT_PLATFORM_LINUX_WINDOWING_DIALOG_TEMPLATE_H
#define NVSUPPORT_PLATFORM_LINUX_WINDOWING_DIALOG_TEMPLATE_H

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "display.h"

namespace windowing {

using Bytes = std::span<const unsigned char>;

// In dialog units.
struct UnitRect {
  std::int16_t x;
  std::int16_t y;
  std::int16_t width;
  std::int16_t height;
};

// base: size of the average character of the dialog font.
RECT ToPixels(const UnitRect& place, POINT base);

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

// Nothing if the bytes are no template, end too early, or hold a kind of control that the core does not have.
std::optional<DialogTemplate> ParseDialogTemplate(Bytes bytes);

// The template of that number in the module's own script, which is linked into it; empty if there is none.
Bytes FindDialogTemplate(HINSTANCE module, LPCSTR name);

// The template of that number in one compiled script, which need not be well-formed.
Bytes FindDialogTemplateIn(Bytes compiledScript, WORD id);

}  // namespace windowing

#endif
