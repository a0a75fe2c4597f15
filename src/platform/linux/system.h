// The published names that the library uses, for Linux: types and constants with their published values, functions
// with their published signatures. A header with functions is implemented by the file of the same name; windowing.h,
// which has many, names its files.
#ifndef NVSUPPORT_PLATFORM_LINUX_SYSTEM_H
#define NVSUPPORT_PLATFORM_LINUX_SYSTEM_H

#include "dial_up.h"
#include "files/file_search.h"
#include "files/file_time.h"
#include "files/files.h"
#include "handle_object.h"
#include "last_error.h"
#include "module.h"
#include "multibyte.h"
#include "process.h"
#include "registry/registry.h"
#include "secure_zero_memory.h"
#include "shell.h"
#include "threads.h"
#include "types.h"
#include "web_client.h"
#include "windowing/windowing.h"

#endif
