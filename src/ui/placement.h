// Where dialogs open: centred on the owner inside the work area, or where the user left them before.
#ifndef NVSUPPORT_UI_PLACEMENT_H
#define NVSUPPORT_UI_PLACEMENT_H

#include <cstdint>
#include <map>

#include "platform/platform.h"

namespace nvsupport {

// Where the user left each dialog, by dialog id and relative to the owner's client area. Forgotten when the library is
// unloaded.
extern std::map<std::uint32_t, POINT>& dialogPositions;

void PlaceDialog(HWND window, std::uint32_t dialogId);
void RememberPosition(HWND window, std::uint32_t dialogId);
void CentreOnOwner(HWND window);
void KeepOnWorkArea(HWND window);

}  // namespace nvsupport

#endif
