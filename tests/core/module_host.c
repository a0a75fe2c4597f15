/*
 * A host in C that loads the module by path and uses it through the public header alone. Each job is a process of its
 * own, because a fault in loading and unloading takes the process with it. Run by module_test.cpp.
 */
#define _GNU_SOURCE
#include <dirent.h>
#include <dlfcn.h>
#include <nvsupport/nvsupport.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* What the process holds at a moment. */
typedef struct Holdings {
  long files;
  long threads;
  long mappings;
  long residentPages;
} Holdings;

/* Puts the address of a function into a pointer to it; false if there is none. C has no cast for this. */
static bool Find(void* library, const char* name, void* function) {
  void* symbol = dlsym(library, name);
  memcpy(function, &symbol, sizeof symbol);
  return symbol != NULL;
}

/* Stands in front of the library's own, so that the host sees when the web client is set to work. */
static int webClientStarts = 0;

int curl_global_init(long flags) {
  void* library = dlopen("libcurl.so.4", RTLD_LAZY | RTLD_NOLOAD);
  int (*function)(long);
  Find(library, "curl_global_init", &function);
  dlclose(library);
  ++webClientStarts;
  return function(flags);
}

/* A function of the host's own that is called like an export. */
bool NSDownloadWebFileProgress(const char* host, const char* path, const char* file, WebProgressCallback callback,
                               void* callbackData, WebProgressCounters* counters) {
  printf("the host's own %d\n", (host && path && file) || callback || callbackData || counters);
  return true;
}

/* The module calls what it means, not what the host calls alike. */
static int DownloadFromNowhere(void* module) {
  bool (*download)(const char*, const char*, const char*, WebProgressCallback, void*);
  return module != NULL && Find(module, "x77fc64c7", &download) && !download("", "", "nowhere", NULL, NULL) ? 0 : 1;
}

static long CountEntries(const char* folder) {
  long count = 0;
  DIR* entries = opendir(folder);
  while (readdir(entries) != NULL) ++count;
  closedir(entries);
  return count;
}

static Holdings Measure(void) {
  Holdings now = {CountEntries("/proc/self/fd"), CountEntries("/proc/self/task"), 0, 0};
  FILE* maps = fopen("/proc/self/maps", "r");
  for (int character; (character = fgetc(maps)) != EOF;) now.mappings += character == '\n';
  fclose(maps);
  FILE* sizes = fopen("/proc/self/statm", "r");
  if (fscanf(sizes, "%*d %ld", &now.residentPages) != 1) now.residentPages = -1;
  fclose(sizes);
  return now;
}

static void* Load(const char* path) {
  void* module = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (module == NULL) fprintf(stderr, "%s\n", dlerror());
  return module;
}

/* Opens a session that stays open. Searches without an area and prints each product and the closing value. */
static int Use(void* module, bool print) {
  void (*openSession)(const char*);
  const char* (*getUserId)(void);
  NVMapShopHandle (*search)(const MapShopPoint*, int32_t);
  bool (*getNext)(NVMapShopHandle, MapShopItem*);
  int32_t (*closeSearch)(NVMapShopHandle);
  if (module == NULL || !Find(module, "NSMapShopSearch", &search) || !Find(module, "NSMapShopGetNext", &getNext) ||
      !Find(module, "NSMapShopClose", &closeSearch) || !Find(module, "x3e491215", &openSession) ||
      !Find(module, "x0d83f18d", &getUserId)) {
    return 1;
  }
  openSession("Atlas");
  if (strcmp(getUserId(), "") != 0) return 1;
  NVMapShopHandle handle = search(NULL, 0);
  MapShopItem item;
  while (getNext(handle, &item)) {
    if (print)
      printf("%s|%s|%s|%d|%d\n", item.title, item.shortText, item.fileReference, item.firstValue, item.secondValue);
  }
  const int32_t closing = closeSearch(handle);
  if (print) printf("closing %d\n", closing);
  return 0;
}

/* Loading alone sets nothing to work and unloading takes the module out of the process. */
static int LoadAndUnload(const char* path) {
  const Holdings before = Measure();
  void* module = Load(path);
  if (module == NULL) return 1;
  const Holdings loaded = Measure();
  printf("threads %ld files %ld web client starts %d\n", loaded.threads - before.threads, loaded.files - before.files,
         webClientStarts);
  dlclose(module);
  module = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
  printf("%s\n", module == NULL ? "unloaded" : "still there");
  return 0;
}

/* Prints by how much the process has grown over `rounds` loads, the first ones left out. */
static int Cycle(const char* path, int rounds, bool inUse) {
  const int warmUp = rounds / 10;
  Holdings before = {0, 0, 0, 0};
  for (int round = 0; round < warmUp + rounds; ++round) {
    if (round == warmUp) before = Measure();
    void* module = Load(path);
    if (module == NULL || (inUse && Use(module, false) != 0)) return 1;
    dlclose(module);
  }
  const Holdings after = Measure();
  printf("%ld %ld %ld %ld\n", after.files - before.files, after.threads - before.threads,
         after.mappings - before.mappings, after.residentPages - before.residentPages);
  return 0;
}

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  const char* path = argv[1];
  const char* job = argv[2];
  const int rounds = argc > 3 ? atoi(argv[3]) : 0;
  if (strcmp(job, "load") == 0) return LoadAndUnload(path);
  if (strcmp(job, "cycle") == 0) return Cycle(path, rounds, false);
  if (strcmp(job, "cycle-in-use") == 0) return Cycle(path, rounds, true);
  if (strcmp(job, "name-taken") == 0) return DownloadFromNowhere(Load(path));
  if (strcmp(job, "use-and-exit") == 0) return Use(Load(path), true); /* and never unloads it */
  return 2;
}
