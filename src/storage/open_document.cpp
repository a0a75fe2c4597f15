#include "storage/open_document.h"

namespace nvsupport {

bool OpenDocument(const std::string& target, HWND owner) {
  SHELLEXECUTEINFOA info{};
  info.cbSize = sizeof info;
  info.hwnd = owner;
  info.lpVerb = "open";
  info.lpFile = target.c_str();
  info.nShow = SW_SHOW;
  return ShellExecuteExA(&info) != 0;
}

}  // namespace nvsupport
