#include "language/catalogue_reader.h"

#include <algorithm>

namespace nvsupport {
namespace {

constexpr std::size_t firstReadSize = std::size_t{64} << 10;

// The characters of either form as 16-bit units, so that one grammar reads both. An odd last byte of the wide form is
// no character.
std::u16string DecodeCharacters(std::string_view bytes) {
  const auto byteAt = [&bytes](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
  if (!bytes.starts_with(wideCatalogueMark)) {
    std::u16string characters(bytes.size(), u'\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) characters[i] = byteAt(i);
    return characters;
  }
  bytes.remove_prefix(wideCatalogueMark.size());
  std::u16string characters(bytes.size() / 2, u'\0');
  for (std::size_t i = 0; i < characters.size(); ++i) {
    characters[i] = static_cast<char16_t>(byteAt(2 * i) | byteAt(2 * i + 1) << 8);
  }
  return characters;
}

// The character that a backslash and this one stand for; nothing if they stand for themselves.
std::optional<char> EscapedCharacter(char escape) {
  switch (escape) {
    case 't':
      return '\t';
    case 'n':
      return '\n';
    case '"':
      return '"';
    case '\\':
      return '\\';
    default:
      return std::nullopt;
  }
}

}  // namespace

std::optional<std::string> ReadCatalogueBytes(std::FILE* file) {
  std::string bytes;
  std::size_t length = 0;
  for (std::size_t room = firstReadSize;; room *= 2) {
    bytes.resize(std::min(room, maxCatalogueBytes + 1));
    length += std::fread(bytes.data() + length, 1, bytes.size() - length, file);
    if (length > maxCatalogueBytes) return std::nullopt;
    if (length < bytes.size()) break;
  }
  if (std::ferror(file) != 0) return std::nullopt;
  bytes.resize(length);
  return bytes;
}

CatalogueReader::CatalogueReader(std::string_view bytes) : characters(DecodeCharacters(bytes)) {}

bool CatalogueReader::Next(CatalogueRecord& record) {
  record.source.clear();
  record.translation.clear();
  record.line = line;
  if (position == characters.size()) return false;

  const std::size_t sourceEnd = std::min(characters.find_first_of(u"\t\n", position), characters.size());
  const bool hasTab = sourceEnd < characters.size() && characters[sourceEnd] == u'\t';
  record.cut = TakeColumn(sourceEnd, record.source);
  if (!hasTab) {
    record.kind = RecordKind::noTab;
    return true;
  }
  if (record.source.empty()) {
    record.kind = RecordKind::noSource;
    return true;
  }
  record.cut |= TakeColumn(std::min(characters.find(u'\n', position), characters.size()), record.translation);
  record.kind = record.translation.empty() ? RecordKind::noTranslation : RecordKind::entry;
  return true;
}

bool CatalogueReader::TakeColumn(std::size_t end, std::string& column) {
  column.resize(end - position);
  char16_t highBits = 0;
  for (char& character : column) {
    const char16_t unit = characters[position++];
    character = static_cast<char>(unit & 0xFF);
    highBits |= unit >> 8;
  }
  if (end < characters.size()) {
    if (characters[end] == u'\n') ++line;
    ++position;
  }
  return highBits != 0;
}

std::string UnescapeCatalogueText(std::string_view text) {
  std::string plain;
  plain.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool last = i + 1 == text.size();
    if (text[i] == '\r') continue;
    if (text[i] == '"') {
      // Two quotes of a quoted cell are one quote of its text; a quote alone encloses the cell.
      if (!last && text[i + 1] == '"') plain += text[++i];
      continue;
    }
    if (text[i] != '\\' || last) {
      plain += text[i];
      continue;
    }
    const char escape = text[++i];
    if (const std::optional<char> escaped = EscapedCharacter(escape)) {
      plain += *escaped;
    } else {
      plain += '\\';
      plain += escape;
    }
  }
  return plain;
}

}  // namespace nvsupport
