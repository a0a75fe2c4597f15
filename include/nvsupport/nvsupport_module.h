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
#include <stddef.h>
#include <string.h>

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

typedef struct NVSupportModule {
  void* library; /* as the system knows it; null while the module is not open */
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
  if (module->library != NULL) {
#ifdef _WIN32
    FreeLibrary((HMODULE)module->library);
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
 * GetLastError() tells why; or the name of the function that the module lacks.
 */
static inline const char* NVSupportOpen(NVSupportModule* module, const char* path) {
  static const struct {
    const char* name;
    size_t member;
  } functions[] = {
      {"x3e491215", offsetof(NVSupportModule, openSession)},
      {"x0d83f18d", offsetof(NVSupportModule, userId)},
      {"x2ed7465a", offsetof(NVSupportModule, deviceId)},
      {"xff99a5e4", offsetof(NVSupportModule, sessionToken)},
      {"NSMapShopSearch", offsetof(NVSupportModule, search)},
      {"NSMapShopGetNext", offsetof(NVSupportModule, getNext)},
      {"NSMapShopClose", offsetof(NVSupportModule, closeSearch)},
      {"NSDownloadWebFileProgress", offsetof(NVSupportModule, download)},
      {"x77fc64c7", offsetof(NVSupportModule, downloadWithoutCounters)},
      {"xfa704a3f", offsetof(NVSupportModule, readRange)},
  };
  memset(module, 0, sizeof *module);
#ifdef _WIN32
  module->library = (void*)LoadLibraryA(path);
#else
  module->library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
#endif
  if (module->library == NULL) return path;
  for (size_t i = 0; i < sizeof functions / sizeof functions[0]; ++i) {
#ifdef _WIN32
    const FARPROC function = GetProcAddress((HMODULE)module->library, functions[i].name);
#else
    void* const function = dlsym(module->library, functions[i].name);
#endif
    if (function == NULL) {
      NVSupportClose(module);
      return functions[i].name;
    }
    /* Copied as bytes: C has no cast from an object's address to a function's. */
    memcpy((char*)module + functions[i].member, &function, sizeof function);
  }
  return NULL;
}

#endif
