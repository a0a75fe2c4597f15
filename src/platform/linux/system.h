// The published names that the library uses, for Linux: types and constants with their published values, functions
// with their published signatures. One header per area, each implemented by the file of the same name.
#ifndef NVSUPPORT_PLATFORM_LINUX_SYSTEM_H
#define NVSUPPORT_PLATFORM_LINUX_SYSTEM_H

#include "files.h"
#include "module.h"
#include "multibyte.h"
#include "registry.h"
#include "secure_zero_memory.h"
#include "shell.h"
#include "threads.h"
#include "types.h"
#include "web_client.h"
#include "windowing/windowing.h"

#endif
