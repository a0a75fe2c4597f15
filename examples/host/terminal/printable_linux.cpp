#include <clocale>
#include <cwchar>

#include "printable.h"

namespace nvhost {
namespace {

// While it lives the C library's character functions read UTF-8, whatever the user's locale.
class Utf8Scope {
 public:
  Utf8Scope() : locale(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)), former(uselocale(locale)) {}
  Utf8Scope(const Utf8Scope&) = delete;
  Utf8Scope& operator=(const Utf8Scope&) = delete;
  ~Utf8Scope() {
    uselocale(former);
    if (locale) freelocale(locale);
  }

 private:
  locale_t locale;
  locale_t former;
};

}  // namespace

Printable::Printable(std::string_view bytes) {
  const Utf8Scope scope;
  while (!bytes.empty()) {
    wchar_t character = 0;
    std::mbstate_t state = {};
    const std::size_t length = std::mbrtowc(&character, bytes.data(), bytes.size(), &state);
    const bool valid = length != 0 && length <= bytes.size();
    const int width = valid ? wcwidth(character) : -1;
    if (width < 0) {
      text += '?';
      columns += 1;
    } else {
      text += bytes.substr(0, length);
      columns += static_cast<std::size_t>(width);
    }
    bytes.remove_prefix(valid ? length : 1);
  }
}

}  // namespace nvhost
