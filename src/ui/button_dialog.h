// A dialog that ends with any of its buttons and returns which one it was.
#ifndef NVSUPPORT_UI_BUTTON_DIALOG_H
#define NVSUPPORT_UI_BUTTON_DIALOG_H

#include <cstdint>
#include <string>

#include "platform/platform.h"

namespace nvsupport {

// Runs the template `id` under `parent` and returns the id of the button, or 2 if the dialog ended in another way or
// could not be shown. `text` goes untranslated into the control `textControlId`, if that is not 0. `last` is unused.
std::uint32_t ShowButtonDialog(std::uint32_t id, HWND parent, const std::string& text, std::uint32_t textControlId,
                               std::uint32_t last);

}  // namespace nvsupport

#endif
