#include "owner.h"

#include <utility>

#include "window_tree.h"

namespace user {

HWND OwnerFor(Display& display, HWND window) {
  const std::uintptr_t foreign = ForeignId(window);
  if (foreign == 0) return DialogOf(window);
  return display.ForeignRect(foreign) ? window : nullptr;
}

DisabledOwner::DisabledOwner(Display& usedDisplay, HWND ownerOrNull) : display(usedDisplay) {
  Window* window = Find(ownerOrNull);
  if (window == nullptr || !window->enabled) return;
  window->enabled = false;
  owner = ownerOrNull;
  display.SetEnabled(owner, false);
}

void DisabledOwner::Enable() {
  const HWND disabled = std::exchange(owner, nullptr);
  Window* window = Find(disabled);
  if (window == nullptr) return;
  window->enabled = true;
  display.SetEnabled(disabled, true);
}

}  // namespace user
