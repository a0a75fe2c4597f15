// A text that is safe to show on a terminal, and how many columns it takes. Texts come from a service; each "?" stands
// for what is malformed or not printable, so that no text can play tricks on the terminal.
#ifndef NVHOST_TERMINAL_PRINTABLE_H
#define NVHOST_TERMINAL_PRINTABLE_H

#include <cstddef>
#include <string>
#include <string_view>

namespace nvhost {

struct Printable {
  explicit Printable(std::string_view bytes);

  std::string text;
  std::size_t columns = 0;
};

}  // namespace nvhost

#endif
