// Loads a module and unloads it, nothing else: what a test sees afterwards is what loading and unloading did.
#include <dlfcn.h>
#include <stdio.h>

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  void* module = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
  if (module == NULL) {
    fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  return dlclose(module) == 0 ? 0 : 1;
}
