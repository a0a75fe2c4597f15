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

constexpr auto endsSource = [](char16_t character) { return character == u'\t' || character == u'\n'; };

// Characters that UnescapeCatalogueText does not just copy.
constexpr auto isMark = [](char character) { return character == '\r' || character == '"' || character == '\\'; };

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

// Undoes the mark at the front of a text; returns how many characters it takes up.
std::size_t TakeMark(std::string_view text, std::string& plain) {
  const bool last = text.size() == 1;
  if (text[0] == '\r') return 1;
  if (text[0] == '"') {
    // Two quotes of a quoted cell are one quote of its text; a quote alone encloses the cell.
    if (last || text[1] != '"') return 1;
    plain += '"';
    return 2;
  }
  if (last) {
    plain += '\\';
    return 1;
  }
  if (const std::optional<char> escaped = EscapedCharacter(text[1])) {
    plain += *escaped;
  } else {
    plain += text.substr(0, 2);
  }
  return 2;
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

  const auto from = characters.begin() + static_cast<std::ptrdiff_t>(position);
  const auto sourceEnd =
      static_cast<std::size_t>(std::find_if(from, characters.end(), endsSource) - characters.begin());
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
  while (true) {
    // Texts are long and marks are few, so what lies between them is copied in one piece.
    const auto mark = std::find_if(text.begin(), text.end(), isMark);
    plain.append(text.begin(), mark);
    if (mark == text.end()) return plain;
    text.remove_prefix(static_cast<std::size_t>(mark - text.begin()));
    text.remove_prefix(TakeMark(text, plain));
  }
}

}  // namespace nvsupport
