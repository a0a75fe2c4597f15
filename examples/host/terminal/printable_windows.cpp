#include <algorithm>
#include <cctype>

#include "printable.h"

namespace nvhost {

// In a code page each byte takes one column: a character of two bytes is two columns wide. Control characters have one
// byte.
Printable::Printable(std::string_view bytes) : text(bytes), columns(bytes.size()) {
  std::ranges::replace_if(text, [](unsigned char byte) { return std::iscntrl(byte) != 0; }, '?');
}

}  // namespace nvhost
