// Where dialogs open: centred on the owner inside the work area, or where the user left them before.
#ifndef NVSUPPORT_UI_PLACEMENT_H
#define NVSUPPORT_UI_PLACEMENT_H

#include <cstdint>
#include <map>

#include "platform/platform.h"

namespace nvsupport {

// Places that the user gave to dialogs, by dialog id, relative to the owner's client area. Kept for this load of the
// library only.
extern std::map<std::uint32_t, POINT>& dialogPositions;

void PlaceDialog(HWND window, std::uint32_t dialogId);
void RememberPosition(HWND window, std::uint32_t dialogId);
void CentreOnOwner(HWND window);
void KeepOnWorkArea(HWND window);

}  // namespace nvsupport

#endif
