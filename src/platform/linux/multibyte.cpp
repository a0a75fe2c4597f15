// Conversions by iconv, between UTF-8 and the code page that the user's environment names, and copies that are cut at
// whole characters.
#include "multibyte.h"

#include <iconv.h>
#include <langinfo.h>
#include <locale.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

#include "base/ascii.h"
#include "base/process_wide.h"
#include "base/scoped_handle.h"
#include "secure_zero_memory.h"

namespace {

constexpr char utf8Name[] = "UTF-8";

bool IsAboveAscii(char c) {
  return static_cast<unsigned char>(c) >= 0x80;
}

// The environment's code page. Where it names none or one that is not installed, UTF-8, of which ASCII is a part.
std::string FindCodePage() {
  const base::ScopedHandle<locale_t, &freelocale> locale(newlocale(LC_CTYPE_MASK, "", nullptr));
  if (!locale && errno == ENOMEM) throw std::bad_alloc();
  if (!locale) return utf8Name;
  const std::string name = nl_langinfo_l(CODESET, locale.get());
  return name == "ANSI_X3.4-1968" ? utf8Name : name;
}

const std::string& CodePage() {
  static base::ProcessWide<const std::string> name(FindCodePage());
  return *name;
}

class Converter {
 public:
  Converter(const char* to, const char* from) : descriptor(iconv_open(to, from)) {
    if (!IsOpen() && errno == ENOMEM) throw std::bad_alloc();
  }
  ~Converter() {
    if (IsOpen()) iconv_close(descriptor);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  bool IsOpen() const { return descriptor != reinterpret_cast<iconv_t>(-1); }

  // Appends what converts from the front of `rest` and takes it off. 0 when nothing is left, else EILSEQ for bytes
  // that do not convert and EINVAL for a character that is cut off.
  int Convert(std::string_view& rest, std::string& result) {
    if (!IsOpen()) return rest.empty() ? 0 : EILSEQ;
    char buffer[512];
    int error = 0;
    do {
      char* in = const_cast<char*>(rest.data());  // iconv's signature; it only reads
      char* out = buffer;
      std::size_t left = rest.size();
      std::size_t room = sizeof buffer;
      error = iconv(descriptor, &in, &left, &out, &room) == static_cast<std::size_t>(-1) ? errno : 0;
      result.append(buffer, out);
      rest.remove_prefix(rest.size() - left);
    } while (error == E2BIG);
    SecureZeroMemory(buffer, sizeof buffer);  // it may have been a password
    return error;
  }

 private:
  iconv_t descriptor;
};

// Windows-1252 differs from the first 256 characters of Unicode in these 32, from 0x80 up. It does not assign five.
constexpr char32_t windows1252[32] = {0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                      0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD,
                                      0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                      0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

char32_t FromWindows1252(unsigned char byte) {
  return byte >= 0x80 && byte < 0xA0 ? windows1252[byte - 0x80] : byte;
}

// Bytes at the end of `text` that begin a character without ending it.
std::size_t CutCharacter(std::string_view text) {
  Converter toUtf8(utf8Name, CodePage().c_str());
  std::string ignored;
  for (;;) {
    const int error = toUtf8.Convert(text, ignored);
    if (error != EILSEQ) return text.size();
    text.remove_prefix(1);
  }
}

// Bytes in front of the first that begins a character beyond the end of Unicode, which iconv accepts in UTF-8.
std::size_t SoundBytes(std::string_view bytes) {
  if (CodePage() != utf8Name) return bytes.size();
  std::size_t at = 0;
  while (at < bytes.size() && bytes.substr(at, 2) < "\xF4\x90") ++at;
  return at;
}

void SkipUtf8Character(std::string_view& text) {
  do text.remove_prefix(1);
  while (!text.empty() && (static_cast<unsigned char>(text.front()) & 0xC0) == 0x80);
}

}  // namespace

namespace platform {

void AppendUtf8(std::string& utf8, char32_t character) {
  const auto tail = [character](int shift) { return static_cast<char>(0x80 | (character >> shift & 0x3F)); };
  if (character < 0x80) {
    utf8 += static_cast<char>(character);
  } else if (character < 0x800) {
    utf8 += {static_cast<char>(0xC0 | character >> 6), tail(0)};
  } else if (character < 0x10000) {
    utf8 += {static_cast<char>(0xE0 | character >> 12), tail(6), tail(0)};
  } else {
    utf8 += {static_cast<char>(0xF0 | character >> 18), tail(12), tail(6), tail(0)};
  }
}

// Text that is the same in both is copied: a conversion would leave it in buffers that are not ours to wipe.
std::string ToUtf8(std::string_view bytes) {
  if (CodePage() == utf8Name && std::none_of(bytes.begin(), bytes.end(), IsAboveAscii)) return std::string(bytes);
  Converter toUtf8(utf8Name, CodePage().c_str());
  std::string utf8;
  // Looked for anew only behind the last: else each byte that is none would cost a look at all behind it.
  for (std::size_t sound = SoundBytes(bytes);;) {
    std::string_view rest = bytes.substr(0, sound);
    toUtf8.Convert(rest, utf8);
    bytes.remove_prefix(sound - rest.size());
    if (bytes.empty()) return utf8;
    AppendUtf8(utf8, FromWindows1252(static_cast<unsigned char>(bytes.front())));
    bytes.remove_prefix(1);
    sound = rest.empty() ? SoundBytes(bytes) : rest.size() - 1;
  }
}

std::string FromUtf8(std::string_view utf8) {
  if (CodePage() == utf8Name) return std::string(utf8);
  Converter fromUtf8(CodePage().c_str(), utf8Name);
  std::string bytes;
  while (fromUtf8.Convert(utf8, bytes) != 0) {
    bytes += '?';
    SkipUtf8Character(utf8);
  }
  return bytes;
}

}  // namespace platform

unsigned char* _mbsnbcpy(unsigned char* destination, const unsigned char* source, std::size_t count) {
  const char* text = reinterpret_cast<const char*>(source);
  std::size_t length = strnlen(text, count);
  if (length == count && count > 0) length -= CutCharacter({text, length});
  std::memcpy(destination, source, length);
  std::memset(destination + length, 0, count - length);
  return destination;
}

int _mbsicmp(const unsigned char* left, const unsigned char* right) {
  // Letters of ASCII are the only ones that a compare without case folds.
  const auto folded = [](unsigned char c) { return static_cast<unsigned char>(base::ToLower(static_cast<char>(c))); };
  while (*left != 0 && folded(*left) == folded(*right)) {
    ++left;
    ++right;
  }
  return folded(*left) - folded(*right);
}

int _mbscmp(const unsigned char* left, const unsigned char* right) {
  return std::strcmp(reinterpret_cast<const char*>(left), reinterpret_cast<const char*>(right));
}
