/* Loads one library and prints the milliseconds that took, the resident kilobytes that it added, and whether the
   display toolkit came with it. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

static double Milliseconds(void) {
  struct timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return (double)now.tv_sec * 1e3 + (double)now.tv_nsec / 1e6;
}

static long ResidentKilobytes(void) {
  long size = 0;
  long resident = 0;
  FILE* file = fopen("/proc/self/statm", "r");
  if (file == NULL) return 0;
  if (fscanf(file, "%ld %ld", &size, &resident) != 2) resident = 0;
  fclose(file);
  return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

static int IsMapped(const char* library) {
  char line[4096];
  int found = 0;
  FILE* file = fopen("/proc/self/maps", "r");
  while (file != NULL && fgets(line, sizeof line, file) != NULL) found |= strstr(line, library) != NULL;
  if (file != NULL) fclose(file);
  return found;
}

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  const long before = ResidentKilobytes();
  const double start = Milliseconds();
  if (dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) == NULL) return 1;
  const double taken = Milliseconds() - start;
  printf("%f %ld %d\n", taken, ResidentKilobytes() - before, IsMapped("libQt6"));
  return 0;
}
