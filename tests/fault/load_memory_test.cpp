// Memory that runs out while the module loads: in a program that has nothing of the library but the file.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "memory_shortage.h"

namespace nvsupport::testing {
namespace {

TEST(ShortOfMemory, TheModuleLoadsOrDoesNot) {
  bool loaded = false;
  GoShortOfMemory([&] {
    void* const module = dlopen(NV_MODULE, RTLD_NOW | RTLD_LOCAL);
    loaded = module != nullptr;
    if (loaded) dlclose(module);
  });
  EXPECT_TRUE(loaded);
}

}  // namespace
}  // namespace nvsupport::testing
