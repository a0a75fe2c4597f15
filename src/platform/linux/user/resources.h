// Dialog templates in compiled resource scripts (.res), by module and id. The module's own script is linked into it;
// programs that are built from the library's objects may add theirs.
#ifndef NVSUPPORT_PLATFORM_LINUX_USER_RESOURCES_H
#define NVSUPPORT_PLATFORM_LINUX_USER_RESOURCES_H

#include <span>

#include "../types.h"

namespace user {

using Bytes = std::span<const unsigned char>;

// Adds a compiled script to those of a module. The bytes are not copied.
void AddResources(HINSTANCE module, Bytes compiledScript);

// The template of that number in one of the module's scripts; empty if there is none.
Bytes FindDialogTemplate(HINSTANCE module, LPCSTR name);

// The template of that number in one compiled script, which need not be well-formed.
Bytes FindDialogTemplateIn(Bytes compiledScript, WORD id);

}  // namespace user

#endif
