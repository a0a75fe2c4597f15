/*
 * A host in C on Windows: loads the DLL by path and uses it through the public header alone. Each job is a process of
 * its own. Run by scripts/test_windows.sh, which knows what the local service has to offer.
 */
#include <nvsupport/nvsupport.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <windows.h>

#define SERVICE_HOST "service.norvane.example"
#define PACKAGE "/files/packages/alps.nvpkg"

/* The module's functions. */
static struct {
  void (*openSession)(const char*);
  const char* (*getUserId)(void);
  uint32_t (*getDeviceId)(void);
  bool (*getToken)(NVWindow, char*);
  NVMapShopHandle (*search)(const MapShopPoint*, int32_t);
  bool (*getNext)(NVMapShopHandle, MapShopItem*);
  int32_t (*closeSearch)(NVMapShopHandle);
  bool (*downloadProgress)(const char*, const char*, const char*, WebProgressCallback, void*, WebProgressCounters*);
  bool (*download)(const char*, const char*, const char*, WebProgressCallback, void*);
  int32_t (*read)(const char*, const char*, int64_t, int32_t, void*, WebProgressCallback, void*);
} nv;

static HMODULE Load(const char* path) {
  static const char* const names[] = {
      "x3e491215",       "x0d83f18d",        "x2ed7465a",      "xff99a5e4",
      "NSMapShopSearch", "NSMapShopGetNext", "NSMapShopClose", "NSDownloadWebFileProgress",
      "x77fc64c7",       "xfa704a3f"};
  FARPROC functions[sizeof names / sizeof *names];
  HMODULE module = LoadLibraryA(path);
  if (module == NULL) return NULL;
  for (size_t i = 0; i < sizeof names / sizeof *names; ++i) functions[i] = GetProcAddress(module, names[i]);
  for (size_t i = 0; i < sizeof names / sizeof *names; ++i) {
    if (functions[i] == NULL) return NULL;
  }
  memcpy(&nv, functions, sizeof nv); /* C has no cast from one to the other */
  return module;
}

static bool Count(void* calls) {
  ++*(int*)calls;
  return true;
}

/* Everything that shows nothing. */
static int Use(void) {
  nv.openSession("Atlas");
  printf("user \"%s\" device %s\n", nv.getUserId(), nv.getDeviceId() != 0 ? "known" : "0");
  const MapShopPoint area[] = {{45.8, 6.8}, {46.0, 7.0}};
  NVMapShopHandle handle = nv.search(area, 2);
  MapShopItem item;
  while (nv.getNext(handle, &item)) printf("%d|%s|%s\n", (int)item.firstValue, item.title, item.fileReference);
  printf("closing %d\n", (int)nv.closeSearch(handle));

  WebProgressCounters counters = {0, 0};
  int calls = 0;
  const bool done = nv.downloadProgress(SERVICE_HOST, PACKAGE, "whole.nvpkg", Count, &calls, &counters);
  printf("download %d done %d total %d told %d\n", done, (int)counters.done, (int)counters.total, calls > 1);
  printf("missing file %d\n", nv.download(SERVICE_HOST, "/missing", "missing", NULL, NULL));
  static char part[64];
  const int read = (int)nv.read(SERVICE_HOST, PACKAGE, 1048576, sizeof part, part, NULL, NULL);
  FILE* file = fopen("part", "wb");
  fwrite(part, 1, sizeof part, file);
  fclose(file);
  printf("read %d\n", read);
  return 0;
}

/* Asks for a token as the user of a product; dialogs come as they are needed. */
static int Token(const char* product) {
  char token[20];
  nv.openSession(product);
  const bool done = nv.getToken(NULL, token);
  printf("user \"%s\" token %s\n", nv.getUserId(), done && strlen(token) > 0 ? "given" : "none");
  return 0;
}

/* What the process holds: bytes in all heaps, and handles. */
typedef struct Holdings {
  size_t bytes;
  DWORD handles;
} Holdings;

static Holdings Measure(void) {
  Holdings now = {0, 0};
  HANDLE heaps[64];
  const DWORD count = GetProcessHeaps(64, heaps);
  for (DWORD i = 0; i < count && i < 64; ++i) {
    PROCESS_HEAP_ENTRY entry = {0};
    HeapLock(heaps[i]);
    while (HeapWalk(heaps[i], &entry)) {
      if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) now.bytes += entry.cbData;
    }
    HeapUnlock(heaps[i]);
  }
  GetProcessHandleCount(GetCurrentProcess(), &now.handles);
  return now;
}

/*
 * Prints by how much each load and unload makes the process grow; the first ones are left out. The system's DLLs stay,
 * as in a host with windows: what they leave behind when they go is not the module's.
 */
static int Cycle(const char* path, int rounds) {
  static const char* const system[] = {"wininet.dll", "shell32.dll", "user32.dll"};
  for (size_t i = 0; i < sizeof system / sizeof *system; ++i) LoadLibraryA(system[i]);
  Holdings before = {0, 0};
  for (int round = -10; round < rounds; ++round) {
    if (round == 0) before = Measure();
    HMODULE module = Load(path);
    if (module == NULL) return 1;
    nv.openSession("Atlas");
    FreeLibrary(module);
  }
  const Holdings after = Measure();
  printf("a load leaves %ld bytes, %ld handles\n", (long)(after.bytes - before.bytes) / rounds,
         (long)(after.handles - before.handles) / rounds);
  if (GetModuleHandleA("nvsupport.dll") != NULL) printf("still loaded\n");
  return 0;
}

/* Keeps a window from the line that it prints until the process is ended; 1 if there is no screen for it. */
static int HoldScreen(void) {
  if (CreateWindowA("STATIC", "", WS_OVERLAPPEDWINDOW, 0, 0, 10, 10, NULL, NULL, NULL, NULL) == NULL) return 1;
  puts("held");
  fflush(stdout);
  Sleep(INFINITE);
  return 0;
}

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  const char* path = argv[1];
  const char* job = argv[2];
  if (strcmp(job, "cycle") == 0 && argc > 3) return Cycle(path, atoi(argv[3]));
  if (strcmp(job, "hold-screen") == 0) return HoldScreen();
  HMODULE module = Load(path);
  if (module == NULL) return 1;
  int result = 2;
  if (strcmp(job, "use") == 0) result = Use();
  if (strcmp(job, "token") == 0 && argc > 3) result = Token(argv[3]);
  FreeLibrary(module);
  return result;
}
