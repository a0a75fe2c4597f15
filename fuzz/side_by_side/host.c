/*
 * A host in C for both systems that does what the lines on its standard input say and prints a line on what came of
 * each. Words are separated by tabs. Run by compare.py.
 */
#include <nvsupport/nvsupport_module.h>
#include <stdio.h>
#include <stdlib.h>

static NVSupportModule module;

static void PrintHex(const void* bytes, size_t size) {
  for (size_t i = 0; i < size; ++i) printf("%02x", ((const unsigned char*)bytes)[i]);
}

static void Token(void) {
  char token[20];
  memset(token, '?', sizeof token);
  printf("%d ", module.sessionToken(NULL, token));
  PrintHex(token, strlen(token));
}

/* Every byte of every record, so that what stands behind a terminator shows, too. */
static void Search(char** words, int count) {
  MapShopPoint points[8];
  for (int i = 0; i < count; ++i) {
    points[i].latitude = atof(words[2 * i]);
    points[i].longitude = atof(words[2 * i + 1]);
  }
  NVMapShopHandle results = module.search(points, count);
  MapShopItem item;
  for (int records = 0; module.getNext(results, &item); ++records) {
    unsigned sum = 0;
    for (size_t i = 0; i < sizeof item; ++i) sum = sum * 31 + ((const unsigned char*)&item)[i];
    if (records < 5) printf("%08x %s, ", sum, item.title);
  }
  printf("closing %d", (int)module.closeSearch(results));
}

static bool CountDown(void* left) {
  return (*(int*)left)-- != 0;
}

static void Download(char** words) {
  int calls = atoi(words[3]);
  WebProgressCounters counters = {7, 7};
  const bool done = module.download(words[0], words[1], words[2], CountDown, &calls, &counters);
  printf("%d, %d of %d", done, (int)counters.done, (int)counters.total);
}

static void ReadRange(char** words) {
  const int length = atoi(words[3]);
  char buffer[256];
  memset(buffer, '?', sizeof buffer);
  printf("%d ", (int)module.readRange(words[0], words[1], atoll(words[2]), length, buffer, NULL, NULL));
  PrintHex(buffer, 16);
}

static void Do(char** words, int count) {
  const char* const what = words[0];
  if (strcmp(what, "load") == 0) printf("%s", NVSupportOpen(&module, words[1]) == NULL ? "loaded" : "not loaded");
  if (strcmp(what, "unload") == 0) NVSupportClose(&module);
  if (strcmp(what, "session") == 0) module.openSession(words[1]);
  if (strcmp(what, "user") == 0) PrintHex(module.userId(), strlen(module.userId()));
  if (strcmp(what, "device") == 0) printf("%08x", (unsigned)module.deviceId());
  if (strcmp(what, "token") == 0) Token();
  if (strcmp(what, "search") == 0) Search(words + 1, (count - 1) / 2);
  if (strcmp(what, "download") == 0) Download(words + 1);
  if (strcmp(what, "range") == 0) ReadRange(words + 1);
}

int main(void) {
  char line[4096];
  while (fgets(line, sizeof line, stdin) != NULL) {
    char* words[20] = {NULL};
    int count = 0;
    line[strcspn(line, "\r\n")] = '\0';
    for (char* word = line; word != NULL && count < 19;) {
      words[count++] = word;
      word = strchr(word, '\t');
      if (word != NULL) *word++ = '\0';
    }
    Do(words, count);
    printf("\n");
    fflush(stdout);
  }
  return 0;
}
