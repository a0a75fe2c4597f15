// The grammar of catalogue files, which docs/catalogue_format.md defines: bytes to records, records to plain texts.
// Used by the catalogue and by the translators' tool.
#ifndef NVSUPPORT_LANGUAGE_CATALOGUE_READER_H
#define NVSUPPORT_LANGUAGE_CATALOGUE_READER_H

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace nvsupport {

// A larger file counts as unreadable, so that loading takes bounded time and memory, whatever the file is.
inline constexpr std::size_t maxCatalogueBytes = std::size_t{32} << 20;

// First bytes of the wide form, a little-endian byte-order mark.
inline constexpr std::string_view wideCatalogueMark = "\xFF\xFE";

// All bytes of a file that was just opened; nothing after a read error or when there are more than maxCatalogueBytes.
std::optional<std::string> ReadCatalogueBytes(std::FILE* file);

enum class RecordKind {
  entry,
  noTab,          // a line without a tab, or the end of the file before one
  noSource,       // a tab with nothing in front of it; what follows the tab is the next record
  noTranslation,  // nothing behind the tab
};

struct CatalogueRecord {
  RecordKind kind = RecordKind::noTab;
  std::size_t line = 0;  // counted from 1
  // As they stand in the file, before escapes.
  std::string source;
  std::string translation;  // of an entry
  bool cut = false;         // a character of a wide file was above U+00FF and has lost its high byte
};

// Reads the bytes where they are: they outlive the reader.
class CatalogueReader {
 public:
  explicit CatalogueReader(std::string_view bytes);
  // Reads the next record; false at the end of the file.
  bool Next(CatalogueRecord& record);

 private:
  // The first place of a character from `position` on; `end` if there is none in front of that.
  std::size_t Find(char character, std::size_t end) const;
  // The text up to `end`, each character cut to its low 8 bits; goes on behind it. True if that changed a character.
  bool TakeColumn(std::size_t end, std::string& column);

  bool wide;
  std::string_view characters;  // without the mark; whole units of 2 bytes in the wide form
  std::size_t position = 0;     // in bytes, as all places in `characters`
  std::size_t lineEnd = 0;      // the line feed behind `position`, or the end
  std::size_t line = 1;
};

// Undoes the quotes and escapes of a column.
std::string UnescapeCatalogueText(std::string_view text);
// The same, to a place that has room for the text as it stands; returns where the plain text, never longer, ends.
char* UnescapeCatalogueText(std::string_view text, char* plain);

}  // namespace nvsupport

#endif
