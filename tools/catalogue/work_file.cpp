#include "work_file.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "character_sets.h"
#include "language/catalogue_reader.h"

namespace nvsupport {
namespace {

constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";
constexpr std::size_t unitSize = 2;

// Removes the first line with its line feed, and returns it without. The line feed is as long as a unit of the text.
std::string_view TakeLine(std::string_view& text, std::string_view feed) {
  std::size_t end = text.find(feed);
  while (end != std::string_view::npos && end % feed.size() != 0) end = text.find(feed, end + 1);
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(line.size() + feed.size(), text.size()));
  return line;
}

// The low bytes of all units, if the high bytes are 0.
std::optional<std::string> LowBytes(std::string_view units) {
  std::string bytes;
  for (std::size_t at = 0; at < units.size(); at += unitSize) {
    if (units[at + 1] != '\0') return std::nullopt;
    bytes += units[at];
  }
  return bytes;
}

// The text of a cell in quotes, in which a quote of the text is doubled; no value for any other column.
std::optional<std::string> TextOfCell(std::string_view column) {
  if (column.size() < 2 || !column.starts_with('"') || !column.ends_with('"')) return std::nullopt;
  const std::string_view inside = column.substr(1, column.size() - 2);
  std::string text;
  for (std::size_t at = 0; at < inside.size(); ++at) {
    if (inside[at] == '"' && inside.substr(++at, 1) != "\"") return std::nullopt;
    text += inside[at];
  }
  return text;
}

// Spreadsheets double the quotes of a text and miss files leave them as they are; a work file has a backslash there.
std::string WithEscapedQuotes(const std::string& column) {
  const std::string text = TextOfCell(column).value_or(column);
  std::string escaped;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '"') escaped += '\\';
    escaped += text[at];
    if (text[at] == '\\' && at + 1 < text.size()) escaped += text[++at];
  }
  return escaped;
}

// Writes a column that has quotes as spreadsheets write the cell: they know no backslash in front of a quote. Quotes
// that the reader would drop are dropped.
std::string AsCell(std::string_view column) {
  if (column.find('"') == std::string_view::npos) return std::string(column);
  std::string cell;
  for (std::size_t at = 0; at < column.size(); ++at) {
    const std::string_view pair = column.substr(at, 2);
    if (pair == "\\\"" || pair == "\"\"") {
      cell += "\"\"";
      ++at;
    } else if (pair.starts_with('\\')) {
      cell += pair;
      ++at;
    } else if (!pair.starts_with('"')) {
      cell += column[at];
    }
  }
  return '"' + cell + '"';
}

std::optional<std::string> ColumnToUtf8(std::string_view units) {
  std::optional<std::string> column = LowBytes(units);
  if (!column || !Converted("UTF-8", "UTF-16LE", *column)) column = Converted("UTF-16LE", "UTF-8", units);
  return column ? std::optional(WithEscapedQuotes(*column)) : std::nullopt;
}

using Conversion = std::function<std::optional<std::string>(std::string_view part)>;

// Converts each column of a line by its own function, and puts a tab of one byte between the results.
std::optional<std::string> ConvertColumns(std::string_view line, std::string_view tab, const Conversion& convert) {
  const char* const end = line.data() + line.size();
  std::string made;
  while (true) {
    const std::string_view column = TakeLine(line, tab);
    const std::optional<std::string> converted = convert(column);
    if (!converted) return std::nullopt;
    made += *converted;
    if (column.data() + column.size() == end) return made;
    made += '\t';
  }
}

// Converts each line by a function; where that gives no value, the work ends for the given reason.
NewFile ConvertLines(std::string_view text, std::string_view feed, const char* reason, const Conversion& convert) {
  std::string made;
  for (std::size_t line = 1; !text.empty(); ++line) {
    const std::optional<std::string> converted = convert(TakeLine(text, feed));
    if (!converted) return Finding{line, reason};
    made += *converted;
  }
  return made;
}

// The translations of each text, in the order of the file, without the placeholders, and with those of orphans.
struct Translations {
  std::vector<std::string> live;
  std::vector<std::string> orphaned;
};

}  // namespace

NewFile ToUtf8(std::string_view bytes) {
  if (!bytes.starts_with(wideCatalogueMark)) return Finding{1, "the file is not in little-endian 16-bit form"};
  bytes.remove_prefix(wideCatalogueMark.size());
  if (bytes.size() % unitSize != 0) return Finding{1, "the file ends in the middle of a character"};
  const std::string_view feed("\n\0", unitSize);
  const std::string_view tab("\t\0", unitSize);
  const std::string_view lineEnd("\r\0", unitSize);
  return ConvertLines(bytes, feed, "half of a character pair", [=](std::string_view line) {
    if (line.ends_with(lineEnd)) line.remove_suffix(unitSize);
    std::optional<std::string> converted = ConvertColumns(line, tab, &ColumnToUtf8);
    if (converted) *converted += '\n';
    return converted;
  });
}

NewFile ToUtf16(std::string_view bytes) {
  if (bytes.starts_with(utf8Mark)) bytes.remove_prefix(utf8Mark.size());
  NewFile made = ConvertLines(bytes, "\n", "bytes that are no UTF-8", [](std::string_view line) {
    return Converted("UTF-8", "UTF-16LE", *ConvertColumns(WithoutLineEnd(line), "\t", &AsCell) + "\r\n");
  });
  if (auto* const units = std::get_if<std::string>(&made)) units->insert(0, wideCatalogueMark);
  return made;
}

NewFile Update(std::string_view bytes, std::span<const std::string_view> texts) {
  if (bytes.starts_with(wideCatalogueMark))
    return Finding{1, "the file is in 16-bit form; to-utf8 makes a work file of it"};
  if (bytes.starts_with(utf8Mark)) bytes.remove_prefix(utf8Mark.size());
  std::map<std::string, Translations, std::less<>> known;
  CatalogueReader reader(bytes);
  CatalogueRecord record;
  while (reader.Next(record)) {
    if (record.kind != RecordKind::entry) {
      if (record.kind == RecordKind::noTab && WithoutLineEnd(record.source).empty()) continue;
      return Finding{record.line, "the line is no entry; repair or remove it, as check tells"};
    }
    const std::string translation(WithoutLineEnd(record.translation));
    const bool isOrphan = record.source.starts_with(orphanMark);
    const std::string source = UnescapeCatalogueText(record.source.substr(isOrphan ? orphanMark.size() : 0));
    if (translation == placeholder || translation.empty()) continue;
    (isOrphan ? known[source].orphaned : known[source].live).push_back(translation);
  }

  std::string made;
  for (const std::string_view text : texts) {
    made += EscapeCatalogueText(text) + '\t';
    const auto found = known.find(text);
    auto* const from = found == known.end()          ? nullptr
                       : !found->second.live.empty() ? &found->second.live
                                                     : &found->second.orphaned;
    made += from != nullptr ? from->back() : placeholder;
    made += '\n';
    if (from != nullptr) std::erase(*from, std::string(from->back()));
  }
  for (const auto& [source, translations] : known) {
    std::vector<std::string> kept = translations.orphaned;
    kept.insert(kept.end(), translations.live.begin(), translations.live.end());
    for (const std::string& translation : kept) {
      made += std::string(orphanMark) + EscapeCatalogueText(source) + '\t' + translation + '\n';
    }
  }
  return made;
}

}  // namespace nvsupport
