// Multi-byte text in the code page of the user's locale (UTF-8 normally).
#ifndef NVSUPPORT_PLATFORM_LINUX_MULTIBYTE_H
#define NVSUPPORT_PLATFORM_LINUX_MULTIBYTE_H

#include <cstddef>
#include <string>
#include <string_view>

// Copies at most `count` bytes, stops at a zero byte, pads with zero bytes up to `count` and never splits a
// character.
unsigned char* _mbsnbcpy(unsigned char* destination, const unsigned char* source, std::size_t count);
int _mbsicmp(const unsigned char* left, const unsigned char* right);
int _mbscmp(const unsigned char* left, const unsigned char* right);

namespace platform {

// A character of Unicode as UTF-8.
void AppendUtf8(std::string& utf8, char32_t character);
// Code page bytes to UTF-8 for showing: bytes that are not valid in the code page count as Windows-1252.
std::string ToUtf8(std::string_view bytes);
// UTF-8 to code page bytes; a character that the code page lacks becomes '?'.
std::string FromUtf8(std::string_view utf8);

}  // namespace platform

#endif
