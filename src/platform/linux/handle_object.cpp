#include "handle_object.h"

#include <memory>

BOOL CloseHandle(HANDLE handle) {
  if (handle == nullptr || handle == INVALID_HANDLE_VALUE) return FALSE;
  const std::unique_ptr<platform::HandleObject> object(static_cast<platform::HandleObject*>(handle));
  return object->Close();
}
