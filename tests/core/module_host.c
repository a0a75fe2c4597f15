/*
 * A host in C that loads the module by path and uses it through the public header alone. Each job is a process of its
 * own, because a fault in loading and unloading takes the process with it. Run by module_test.cpp.
 */
#define _GNU_SOURCE
#include <dirent.h>
#include <nvsupport/nvsupport_module.h>
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

/* Stands in front of the library's own, so that the host sees when the web client is set to work. */
static int webClientStarts = 0;

int curl_global_init(long flags) {
  void* library = dlopen("libcurl.so.4", RTLD_LAZY | RTLD_NOLOAD);
  void* symbol = dlsym(library, "curl_global_init");
  int (*function)(long);
  memcpy(&function, &symbol, sizeof symbol); /* C has no cast for this */
  dlclose(library);
  ++webClientStarts;
  return function(flags);
}

/* A function of the host's own that is called like an export. The module calls what it means. */
bool NSDownloadWebFileProgress(const char* host, const char* path, const char* file, WebProgressCallback callback,
                               void* callbackData, WebProgressCounters* counters) {
  printf("the host's own %d\n", (host && path && file) || callback || callbackData || counters);
  return true;
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

static NVSupportModule Load(const char* path) {
  NVSupportModule module;
  const char* missing = NVSupportOpen(&module, path);
  if (missing != NULL) {
    fprintf(stderr, "%s\n", missing);
    exit(1);
  }
  return module;
}

/* Opens a session that stays open, and searches without an area; whether the map shop has one product. */
static bool Use(const NVSupportModule* module) {
  module->openSession("Atlas");
  NVMapShopHandle handle = module->search(NULL, 0);
  MapShopItem item;
  const bool found = module->getNext(handle, &item);
  return found && !module->getNext(handle, &item) && module->closeSearch(handle) == 7 && *module->userId() == '\0' &&
         !module->downloadWithoutCounters("", "", "nowhere", NULL, NULL);
}

/* Loading alone sets nothing to work and unloading takes the module out of the process. */
static int LoadAndUnload(const char* path) {
  const Holdings before = Measure();
  NVSupportModule module = Load(path);
  const Holdings loaded = Measure();
  printf("threads %ld files %ld web client starts %d\n", loaded.threads - before.threads, loaded.files - before.files,
         webClientStarts);
  NVSupportClose(&module);
  printf("%s\n", dlopen(path, RTLD_NOW | RTLD_NOLOAD) == NULL ? "unloaded" : "still there");
  return 0;
}

/* Prints by how much the process has grown over `rounds` loads, the first ones left out. */
static int Cycle(const char* path, int rounds) {
  const int warmUp = rounds / 10;
  Holdings before = {0, 0, 0, 0};
  for (int round = 0; round < warmUp + rounds; ++round) {
    if (round == warmUp) before = Measure();
    NVSupportModule module = Load(path);
    if (!Use(&module)) return 1;
    NVSupportClose(&module);
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
  if (strcmp(job, "load") == 0) return LoadAndUnload(path);
  if (strcmp(job, "cycle") == 0) return Cycle(path, atoi(argv[3]));
  const NVSupportModule module = Load(path); /* and never unloads it */
  return Use(&module) ? 0 : 1;
}
