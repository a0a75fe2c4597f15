/*
 * A host in C on Windows that loads the DLL by path. Each job is a process of its own. Run by scripts/test_windows.sh.
 */
#include <nvsupport/nvsupport_module.h>
#include <stdio.h>
#include <stdlib.h>

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
    NVSupportModule module;
    if (NVSupportOpen(&module, path) != NULL) return 1;
    module.openSession("Atlas");
    NVSupportClose(&module);
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
  if (argc == 4 && strcmp(argv[1], "cycle") == 0) return Cycle(argv[2], atoi(argv[3]));
  if (argc == 2 && strcmp(argv[1], "hold-screen") == 0) return HoldScreen();
  return 2;
}
