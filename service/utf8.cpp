#include "service/utf8.h"

#include <iconv.h>

#include <stdexcept>

namespace nvsupport::service {
namespace {

constexpr std::string_view replacement = "\uFFFD";

struct Converted {
  std::string text;        // in UTF-8
  bool wellFormed = true;  // no byte had to be replaced
};

// Bytes that are no character of the code page become U+FFFD, and so do zero characters.
Converted FromCodePage(const char* codePage, std::string text) {
  const iconv_t converter = iconv_open("UTF-8", codePage);
  if (converter == reinterpret_cast<iconv_t>(-1)) throw std::runtime_error("no conversion of texts");
  Converted converted;
  std::string utf8(text.size() * replacement.size(), '\0');  // no byte becomes longer than this
  char* from = text.data();
  char* to = utf8.data();
  std::size_t left = text.size();
  std::size_t room = utf8.size();
  for (;;) {
    iconv(converter, &from, &left, &to, &room);
    if (left == 0) break;
    converted.wellFormed = false;
    to += replacement.copy(to, room);
    room -= replacement.size();
    ++from;
    --left;
  }
  iconv_close(converter);
  utf8.resize(utf8.size() - room);
  for (const char& c : utf8) converted.text += c != '\0' ? std::string_view(&c, 1) : replacement;
  return converted;
}

// For well-formed text only. Needed because iconv accepts characters beyond the end of Unicode.
bool IsUnicode(std::string_view utf8) {
  for (std::size_t at = 0; at < utf8.size(); ++at) {
    if (utf8.substr(at, 2) >= "\xF4\x90") return false;
  }
  return true;
}

}  // namespace

std::string ToUtf8(std::string_view text) {
  Converted converted = FromCodePage("UTF-8", std::string(text));
  if (!converted.wellFormed || !IsUnicode(text)) converted = FromCodePage("WINDOWS-1252", std::string(text));
  return converted.text;
}

}  // namespace nvsupport::service
