#include "nvsupport_module.h"

#include <dlfcn.h>

#include <filesystem>
#include <stdexcept>

namespace nvhost {
namespace {

void* Load(const std::string& path) {
  // An absolute path: a bare name would be looked for among the system's libraries.
  void* const module = dlopen(std::filesystem::absolute(path).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!module) throw std::runtime_error(std::string("cannot load the support library: ") + dlerror());
  return module;
}

}  // namespace

std::string FindLibrary() {
  const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  const auto beside = folder / "nvsupport.so";
  const auto installed = (folder / NVHOST_LIBRARY_FOLDER / "nvsupport.so").lexically_normal();
  return std::filesystem::exists(beside) || !std::filesystem::exists(installed) ? beside : installed;
}

void NvSupport::Unloader::operator()(void* loaded) const {
  dlclose(loaded);
}

void* NvSupport::FindSymbol(const char* name) const {
  void* const symbol = dlsym(module.get(), name);
  if (!symbol) throw std::runtime_error(std::string("the support library lacks an export: ") + dlerror());
  return symbol;
}

NvSupport::NvSupport(const std::string& path)
    : module(Load(path)),
      openSession(Find<decltype(::x3e491215)>("x3e491215")),
      userId(Find<decltype(::x0d83f18d)>("x0d83f18d")),
      deviceId(Find<decltype(::x2ed7465a)>("x2ed7465a")),
      sessionToken(Find<decltype(::xff99a5e4)>("xff99a5e4")),
      search(Find<decltype(::NSMapShopSearch)>("NSMapShopSearch")),
      nextItem(Find<decltype(::NSMapShopGetNext)>("NSMapShopGetNext")),
      closeSearch(Find<decltype(::NSMapShopClose)>("NSMapShopClose")),
      download(Find<decltype(::NSDownloadWebFileProgress)>("NSDownloadWebFileProgress")),
      readRange(Find<decltype(::xfa704a3f)>("xfa704a3f")) {}

}  // namespace nvhost
