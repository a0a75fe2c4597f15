/*
 * The ten functions of nvsupport.h, found by name in a module that a host loads when it runs. This header is all of
 * it: C11 and C++, Linux and Windows, no memory allocated. On Linux with a C library older than glibc 2.34, link with
 * -ldl.
 *
 *   NVSupportModule support;
 *   const char* missing = NVSupportOpen(&support, "/opt/maps/nvsupport.so");
 *   if (missing) return Fail(missing);
 *   support.openSession("Maps");
 *   NVSupportClose(&support);
 */
#ifndef NVSUPPORT_NVSUPPORT_MODULE_H
#define NVSUPPORT_NVSUPPORT_MODULE_H

#include <nvsupport/nvsupport.h>
#include <string.h>

#ifdef _WIN32
#include <windows.h>
typedef HMODULE NVLibrary;
typedef FARPROC NVFunction;
#else
#include <dlfcn.h>
typedef void* NVLibrary;
typedef void* NVFunction;
#endif

typedef struct NVSupportModule {
  NVLibrary library; /* as the system knows it; null while the module is not open */
  /* The functions, in the order in which NVSupportOpen finds them. */
  NVOpenSessionFunction openSession;
  NVUserIdFunction userId;
  NVDeviceIdFunction deviceId;
  NVSessionTokenFunction sessionToken;
  NVMapShopSearchFunction search;
  NVMapShopGetNextFunction getNext;
  NVMapShopCloseFunction closeSearch;
  NVDownloadWebFileProgressFunction download;
  NVDownloadWebFileFunction downloadWithoutCounters;
  NVReadWebFileFunction readRange;
} NVSupportModule;

/*
 * Unloads the module, whose functions are not to be called any more: no call of it may still run, on any thread. Does
 * nothing if it is not open.
 */
static inline void NVSupportClose(NVSupportModule* module) {
  if (module->library) {
#ifdef _WIN32
    FreeLibrary(module->library);
#else
    dlclose(module->library);
#endif
  }
  memset(module, 0, sizeof *module);
}

/*
 * Loads the module and finds its functions: all of them, or none and the module is not open.
 *
 * path: file of the module, best with its folder; a bare name is looked for where the system looks for libraries.
 * Returns null when all is there. Else what is not: `path` itself if the system cannot load it, and then dlerror() or
 * GetLastError() says why; or the name of the function that the module lacks.
 */
static inline const char* NVSupportOpen(NVSupportModule* module, const char* path) {
  /* Behind the last name stands null. */
  static const char* const names[11] = {
      "x3e491215",       "x0d83f18d",        "x2ed7465a",      "xff99a5e4",
      "NSMapShopSearch", "NSMapShopGetNext", "NSMapShopClose", "NSDownloadWebFileProgress",
      "x77fc64c7",       "xfa704a3f",
  };
  /* The module byte for byte, with the functions as the system finds them. */
  struct {
    NVLibrary library;
    NVFunction functions[10];
  } found;
  int i = 0;
  memset(&found, 0, sizeof found);
  memset(module, 0, sizeof *module);
#ifdef _WIN32
  found.library = LoadLibraryA(path);
#else
  found.library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
#endif
  if (!found.library) return path;
  for (; names[i]; ++i) {
#ifdef _WIN32
    found.functions[i] = GetProcAddress(found.library, names[i]);
#else
    found.functions[i] = dlsym(found.library, names[i]);
#endif
    if (!found.functions[i]) break;
  }
  /* Copied as bytes: C has no cast from an object's address to a function's. */
  memcpy(module, &found, sizeof found);
  if (names[i]) NVSupportClose(module);
  return names[i];
}

#endif
