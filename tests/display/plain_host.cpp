// A host without Qt: loads the module, asks for a token and unloads it, as often as asked.
//   plain_host MODULE TIMES
#include <cstdlib>

#include "display/module_cycle.h"

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  for (int i = std::atoi(argv[2]); i > 0; --i) nvsupport::testing::RunModuleCycle(argv[1]);
}
