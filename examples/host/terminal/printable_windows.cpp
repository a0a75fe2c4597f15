#include <algorithm>
#include <cctype>

#include "printable.h"

namespace nvhost {

// In a code page every byte takes a column, as a character of two bytes takes two; control characters are one byte.
Printable::Printable(std::string_view bytes) : text(bytes), columns(bytes.size()) {
  std::ranges::replace_if(
      text, [](unsigned char byte) { return std::iscntrl(byte) != 0; }, '?');
}

}  // namespace nvhost
