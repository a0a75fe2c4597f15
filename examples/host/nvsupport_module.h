// The support library as a host loads it: opened by path, each export found by its name. The members are the exports;
// nvsupport/nvsupport.h documents them.
#ifndef NVHOST_NVSUPPORT_MODULE_H
#define NVHOST_NVSUPPORT_MODULE_H

#include <nvsupport/nvsupport.h>

#include <memory>
#include <string>

namespace nvhost {

// Where the library stands: beside the program in a build tree, in the folder for libraries when both are installed.
std::string FindLibrary();

class NvSupport {
  // The module stays loaded for as long as this object lives. Declared first: the exports are found in it.
  struct Unloader {
    void operator()(void* module) const;
  };
  std::unique_ptr<void, Unloader> module;

  template <typename Function>
  Function* Find(const char* name) const {
    return reinterpret_cast<Function*>(FindSymbol(name));
  }
  void* FindSymbol(const char* name) const;

 public:
  // Throws std::runtime_error with the loader's reason if the module or one of its exports is not there.
  explicit NvSupport(const std::string& path);

  // The account.
  decltype(::x3e491215)* const openSession;
  decltype(::x0d83f18d)* const userId;
  decltype(::x2ed7465a)* const deviceId;
  decltype(::xff99a5e4)* const sessionToken;

  // The map shop.
  decltype(::NSMapShopSearch)* const search;
  decltype(::NSMapShopGetNext)* const nextItem;
  decltype(::NSMapShopClose)* const closeSearch;

  // Files on web servers.
  decltype(::NSDownloadWebFileProgress)* const download;
  decltype(::xfa704a3f)* const readRange;
};

}  // namespace nvhost

#endif
