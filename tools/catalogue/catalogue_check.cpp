#include "catalogue_check.h"

#include <map>
#include <set>

#include "character_sets.h"
#include "language/catalogue_reader.h"
#include "language/format_check.h"
#include "source_texts.h"

namespace nvsupport {
namespace {

// Byte-order marks that the reader would take for part of the text.
struct ForeignMark {
  std::string_view bytes;
  const char* message;
};

constexpr ForeignMark foreignMarks[] = {
    {"\xEF\xBB\xBF", "the file begins with a UTF-8 mark, which becomes part of the first text"},
    {"\xFE\xFF", "the file is in big-endian UTF-16, which is not read"},
};

// The inside of a quoted cell; any other column as it stands.
std::string_view WithoutCellQuotes(std::string_view column) {
  if (column.size() < 2 || !column.starts_with('"') || !column.ends_with('"')) return column;
  return column.substr(1, column.size() - 2);
}

bool LosesQuote(std::string_view column) {
  column = WithoutCellQuotes(column);
  for (std::size_t i = 0; i < column.size(); ++i) {
    if (column[i] == '\\') {
      ++i;
    } else if (column[i] == '"') {
      if (column.substr(i + 1, 1) != "\"") return true;
      ++i;
    }
  }
  return false;
}

bool KeepsBackslash(std::string_view column) {
  for (std::size_t i = column.find('\\'); i < column.size(); i = column.find('\\', i + 2)) {
    if (i + 1 == column.size() || std::string_view("tn\"\\").find(column[i + 1]) == std::string_view::npos) return true;
  }
  return false;
}

bool LosesReturn(std::string_view column) {
  return column.find('\r') != std::string_view::npos;
}

// True if Linux cannot show the bytes: its code page is UTF-8.
bool IsNoUtf8(std::string_view column) {
  return !Converted("UTF-8", "UTF-16LE", column);
}

struct ColumnFault {
  bool (*applies)(std::string_view column);
  const char* message;
};

constexpr ColumnFault columnFaults[] = {
    {LosesQuote, "a double quote is lost; write it as \\\" or, in a quoted cell, as two"},
    {KeepsBackslash, "a backslash stays with the character behind it; write a backslash as \\\\"},
    {LosesReturn, "a carriage return is lost"},
    {IsNoUtf8, "bytes that are no UTF-8, which Linux does not show as they were meant"},
};

// The character behind '&', an ASCII letter in small; empty if there is none. "&&" is the sign itself.
std::string MarkedKey(std::string_view text) {
  std::size_t at = text.find('&');
  while (at < text.size() && text.substr(at + 1, 1) == "&") at = text.find('&', at + 2);
  if (at >= text.size()) return {};
  std::size_t end = at + 2;
  while (end < text.size() && (text[end] & 0xC0) == 0x80) ++end;
  std::string key(text.substr(at + 1, end - at - 1));
  for (char& byte : key) byte = byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + ('a' - 'A')) : byte;
  return key;
}

// Collects the findings on one file, record by record.
class Checker {
 public:
  void Report(std::size_t line, std::string message) { findings.push_back({line, std::move(message)}); }

  void CheckRecord(const CatalogueRecord& record) {
    if (record.cut) Report(record.line, "a character above U+00FF loses its high byte");
    switch (record.kind) {
      case RecordKind::entry:
        return CheckEntry(record);
      case RecordKind::noTranslation:
        return Report(record.line, "nothing stands behind the tab; the line is dropped");
      case RecordKind::noSource:
        return Report(record.line, "a tab with no text in front of it is dropped");
      case RecordKind::noTab:
        if (!WithoutLineEnd(record.source).empty()) Report(record.line, "the line has no tab and is dropped");
    }
  }

  void CheckKeys() {
    std::map<std::pair<int, std::string>, std::size_t> taken;
    std::set<std::pair<std::size_t, std::size_t>> told;  // two texts can meet in several dialogs
    for (const auto& [dialog, text] : DialogTexts()) {
      const auto entry = entries.find(std::string(text));
      if (entry == entries.end()) continue;
      const auto [line, key] = entry->second;
      if (key.empty()) continue;
      const auto [earlier, isNew] = taken.insert({{dialog, key}, line});
      if (!isNew && told.insert({line, earlier->second}).second)
        Report(line, "the letter " + key + " is marked in line " + std::to_string(earlier->second) +
                         ", too, for the same dialog");
    }
  }

  std::vector<Finding> findings;

 private:
  void CheckEntry(const CatalogueRecord& record) {
    CheckColumn(record.line, "source text: ", record.source);
    CheckColumn(record.line, "translation: ", WithoutLineEnd(record.translation));

    const std::string source = UnescapeCatalogueText(record.source);
    const std::string translation = UnescapeCatalogueText(record.translation);
    if (source.empty()) Report(record.line, "the source text is empty");
    if (translation.empty()) Report(record.line, "the translation is empty");
    if (translation == placeholder) Report(record.line, "the placeholder " + translation + " is not translated");
    if (!HaveSameConversions(source, translation)) {
      Report(record.line, "the conversions (% signs) differ from those of the source text; it will not be translated");
    }
    const auto [earlier, isNew] = entries.insert({source, {}});
    const std::string before = std::to_string(earlier->second.line);
    if (!isNew) Report(record.line, "the same source text as in line " + before + ", which it replaces");
    earlier->second = {record.line, MarkedKey(translation)};
  }

  void CheckColumn(std::size_t line, const char* name, std::string_view column) {
    for (const ColumnFault& fault : columnFaults) {
      if (fault.applies(column)) Report(line, std::string(name) + fault.message);
    }
  }

  struct Entry {
    std::size_t line = 0;
    std::string key;  // the marked letter; empty if there is none
  };

  std::map<std::string, Entry> entries;  // by source text
};

}  // namespace

std::vector<Finding> CheckCatalogue(std::string_view bytes) {
  Checker checker;
  for (const ForeignMark& mark : foreignMarks) {
    if (bytes.starts_with(mark.bytes)) checker.Report(1, mark.message);
  }
  CatalogueReader reader(bytes);
  CatalogueRecord record;
  while (reader.Next(record)) checker.CheckRecord(record);
  checker.CheckKeys();
  return checker.findings;
}

std::vector<std::string_view> FindMissingTexts(std::string_view bytes, std::span<const std::string_view> texts) {
  std::set<std::string, std::less<>> present;
  CatalogueReader reader(bytes);
  CatalogueRecord record;
  while (reader.Next(record)) {
    if (record.kind == RecordKind::entry) present.insert(UnescapeCatalogueText(record.source));
  }
  std::vector<std::string_view> missing;
  for (const std::string_view text : texts) {
    if (!present.contains(text)) missing.push_back(text);
  }
  return missing;
}

std::string EscapeCatalogueText(std::string_view text) {
  std::string column;
  for (const char character : text) {
    switch (character) {
      case '\t':
        column += "\\t";
        break;
      case '\n':
        column += "\\n";
        break;
      case '"':
        column += "\\\"";
        break;
      case '\\':
        column += "\\\\";
        break;
      default:
        column += character;
    }
  }
  return column;
}

}  // namespace nvsupport
