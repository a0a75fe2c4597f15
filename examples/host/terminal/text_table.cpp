#include "text_table.h"

#include <algorithm>
#include <clocale>
#include <cwchar>

namespace nvhost {
namespace {

constexpr std::string_view gap = "  ";

// Makes the character functions read UTF-8 for as long as it lives, whatever the user's locale.
class Utf8Scope {
 public:
  Utf8Scope() : locale(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)), former(uselocale(locale)) {}
  Utf8Scope(const Utf8Scope&) = delete;
  Utf8Scope& operator=(const Utf8Scope&) = delete;
  ~Utf8Scope() {
    uselocale(former);
    if (locale) freelocale(locale);
  }

 private:
  locale_t locale;
  locale_t former;
};

}  // namespace

Printable::Printable(std::string_view bytes) {
  const Utf8Scope scope;
  while (!bytes.empty()) {
    wchar_t character = 0;
    std::mbstate_t state = {};
    const std::size_t length = std::mbrtowc(&character, bytes.data(), bytes.size(), &state);
    const bool valid = length != 0 && length <= bytes.size();
    const int width = valid ? wcwidth(character) : -1;
    if (width < 0) {
      text += '?';
      columns += 1;
    } else {
      text += bytes.substr(0, length);
      columns += static_cast<std::size_t>(width);
    }
    bytes.remove_prefix(valid ? length : 1);
  }
}

TextTable::TextTable(std::vector<Column> tableColumns) : columns(std::move(tableColumns)) {
  std::vector<std::string> titles;
  for (const Column& column : columns) titles.push_back(column.title);
  AddRow(titles);
}

void TextTable::AddRow(const std::vector<std::string>& texts) {
  rows.emplace_back(texts.begin(), texts.end());
}

std::string TextTable::Format() const {
  std::vector<std::size_t> widths(columns.size());
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < columns.size(); ++i) widths[i] = std::max(widths[i], row[i].columns);
  }
  std::string table;
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < columns.size(); ++i) {
      const std::string padding(widths[i] - row[i].columns, ' ');
      if (i > 0) line += gap;
      line += columns[i].align == Align::left ? row[i].text + padding : padding + row[i].text;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    table += line + '\n';
  }
  return table;
}

}  // namespace nvhost
