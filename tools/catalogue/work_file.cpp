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

// Takes a line and the line feed behind it off the front. The feed has as many bytes as a unit of the text.
std::string_view TakeLine(std::string_view& text, std::string_view feed) {
  std::size_t end = text.find(feed);
  while (end != std::string_view::npos && end % feed.size() != 0) end = text.find(feed, end + 1);
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(line.size() + feed.size(), text.size()));
  return line;
}

// The low bytes of all units if they hold nothing else.
std::optional<std::string> LowBytes(std::string_view units) {
  std::string bytes;
  for (std::size_t at = 0; at < units.size(); at += unitSize) {
    if (units[at + 1] != '\0') return std::nullopt;
    bytes += units[at];
  }
  return bytes;
}

std::optional<std::string> ColumnToUtf8(std::string_view units) {
  std::optional<std::string> column = LowBytes(units);
  if (!column || !Converted("UTF-8", "UTF-16LE", *column)) column = Converted("UTF-16LE", "UTF-8", units);
  if (!column || !LosesQuote(*column)) return column;
  std::string escaped;
  for (const char character : *column) {
    if (character == '"' && !escaped.ends_with('\\')) escaped += '\\';
    escaped += character;
  }
  return escaped;
}

// Each line by a function of its own; no value of it ends the work for the reason given.
NewFile ConvertLines(std::string_view text, std::string_view feed, const char* reason,
                     const std::function<std::optional<std::string>(std::string_view line)>& convert) {
  std::string made;
  for (std::size_t line = 1; !text.empty(); ++line) {
    const std::optional<std::string> converted = convert(TakeLine(text, feed));
    if (!converted) return Finding{line, reason};
    made += *converted;
  }
  return made;
}

// The translations of each text, in the order of the file and without those that are still to be made; from where
// orphans are kept, too.
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
  return ConvertLines(bytes, feed, "half of a character pair", [tab](std::string_view line) {
    std::optional<std::string> converted = ColumnToUtf8(TakeLine(line, tab));
    while (converted && !line.empty()) {
      const std::optional<std::string> column = ColumnToUtf8(TakeLine(line, tab));
      converted = column ? std::optional(*converted + '\t' + *column) : std::nullopt;
    }
    return converted ? std::optional(std::string(WithoutLineEnd(*converted)) + '\n') : converted;
  });
}

NewFile ToUtf16(std::string_view bytes) {
  if (bytes.starts_with(utf8Mark)) bytes.remove_prefix(utf8Mark.size());
  NewFile made = ConvertLines(bytes, "\n", "bytes that are no UTF-8", [](std::string_view line) {
    return Converted("UTF-8", "UTF-16LE", std::string(WithoutLineEnd(line)) + "\r\n");
  });
  if (auto* const units = std::get_if<std::string>(&made)) units->insert(0, wideCatalogueMark);
  return made;
}

NewFile Update(std::string_view bytes, std::span<const std::string_view> texts) {
  if (bytes.starts_with(wideCatalogueMark))
    return Finding{1, "the file is in 16-bit form; to-utf8 makes a work file of it"};
  std::map<std::string, Translations, std::less<>> known;
  CatalogueReader reader(bytes);
  CatalogueRecord record;
  while (reader.Next(record)) {
    const std::string translation(WithoutLineEnd(record.translation));
    if (record.kind != RecordKind::entry) {
      if (record.kind == RecordKind::noTab && WithoutLineEnd(record.source).empty()) continue;
      return Finding{record.line, "the line is no entry; repair or remove it, as check tells"};
    }
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
