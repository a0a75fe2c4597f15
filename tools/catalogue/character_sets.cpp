#include "character_sets.h"

#include <iconv.h>

#include <memory>

namespace nvsupport {

std::optional<std::string> Converted(const char* from, const char* to, std::string_view bytes) {
  const std::unique_ptr<void, int (*)(iconv_t)> converter(iconv_open(to, from), &iconv_close);
  std::string text(2 * bytes.size(), '\0');  // enough between UTF-8 and UTF-16, both ways
  char* in = const_cast<char*>(bytes.data());
  char* out = text.data();
  std::size_t inSize = bytes.size();
  std::size_t outSize = text.size();
  if (iconv(converter.get(), &in, &inSize, &out, &outSize) == static_cast<std::size_t>(-1)) return std::nullopt;
  text.resize(text.size() - outSize);
  return text;
}

}  // namespace nvsupport
