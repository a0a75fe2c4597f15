#include "language/catalogue_reader.h"

#include <algorithm>
#include <array>

#include "base/read_stream.h"

namespace nvsupport {
namespace {

// The characters that UnescapeCatalogueText does not just copy. A table, because every byte of a catalogue is looked
// up.
constexpr std::array<bool, 256> marks = [] {
  std::array<bool, 256> table{};
  for (const char mark : {'\r', '"', '\\'}) table[static_cast<unsigned char>(mark)] = true;
  return table;
}();
constexpr auto isMark = [](unsigned char character) { return marks[character]; };

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
std::size_t TakeMark(std::string_view text, char*& plain) {
  const bool last = text.size() == 1;
  if (text[0] == '\r') return 1;
  if (text[0] == '"') {
    // Two quotes of a quoted cell are one quote of its text; a quote alone encloses the cell.
    if (last || text[1] != '"') return 1;
    *plain++ = '"';
    return 2;
  }
  if (last) {
    *plain++ = '\\';
    return 1;
  }
  if (const std::optional<char> escaped = EscapedCharacter(text[1])) {
    *plain++ = *escaped;
  } else {
    plain = std::copy_n(text.begin(), 2, plain);
  }
  return 2;
}

}  // namespace

std::optional<std::string> ReadCatalogueBytes(std::FILE* file) {
  std::optional<std::string> bytes = base::ReadStream(file, maxCatalogueBytes);
  if (std::ferror(file) != 0) return std::nullopt;
  return bytes;
}

CatalogueReader::CatalogueReader(std::string_view bytes)
    : wide(bytes.starts_with(wideCatalogueMark)), characters(bytes) {
  if (!wide) return;
  characters.remove_prefix(wideCatalogueMark.size());
  characters.remove_suffix(characters.size() % 2);  // an odd last byte is no character
}

bool CatalogueReader::Next(CatalogueRecord& record) {
  record.line = line;
  if (position == characters.size()) return false;

  // A line may hold many records, each a tab with nothing in front of it; its end is sought once.
  if (position == 0 || position > lineEnd) lineEnd = Find('\n', characters.size());
  const std::size_t sourceEnd = Find('\t', lineEnd);
  const bool hasTab = sourceEnd < lineEnd;
  record.cut = TakeColumn(sourceEnd, record.source);
  if (!hasTab) {
    record.kind = RecordKind::noTab;
    return true;
  }
  if (record.source.empty()) {
    record.kind = RecordKind::noSource;
    return true;
  }
  record.cut |= TakeColumn(lineEnd, record.translation);
  record.kind = record.translation.empty() ? RecordKind::noTranslation : RecordKind::entry;
  return true;
}

std::size_t CatalogueReader::Find(char character, std::size_t end) const {
  if (!wide) return std::min(characters.substr(0, end).find(character, position), end);
  std::size_t at = position;
  while (at < end && (characters[at] != character || characters[at + 1] != 0)) at += 2;
  return at;
}

bool CatalogueReader::TakeColumn(std::size_t end, std::string& column) {
  const std::string_view taken = characters.substr(position, end - position);
  bool cut = false;
  if (wide) {
    column.resize(taken.size() / 2);
    for (std::size_t at = 0; at < column.size(); ++at) {
      column[at] = taken[2 * at];
      cut |= taken[2 * at + 1] != 0;
    }
  } else {
    column = taken;
  }
  position = end;
  if (end == characters.size()) return cut;
  if (end == lineEnd) ++line;
  position += wide ? 2 : 1;
  return cut;
}

std::string UnescapeCatalogueText(std::string_view text) {
  std::string plain(text.size(), '\0');
  plain.resize(static_cast<std::size_t>(UnescapeCatalogueText(text, plain.data()) - plain.data()));
  return plain;
}

char* UnescapeCatalogueText(std::string_view text, char* plain) {
  while (true) {
    // Texts are long and marks are few, so what lies between them is copied in one piece.
    const auto mark = std::find_if(text.begin(), text.end(), isMark);
    plain = std::copy(text.begin(), mark, plain);
    if (mark == text.end()) return plain;
    text.remove_prefix(static_cast<std::size_t>(mark - text.begin()));
    text.remove_prefix(TakeMark(text, plain));
  }
}

}  // namespace nvsupport
