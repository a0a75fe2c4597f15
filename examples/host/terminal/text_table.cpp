#include "text_table.h"

#include <algorithm>

namespace nvhost {
namespace {

constexpr std::string_view gap = "  ";

}  // namespace

TextTable::TextTable(std::vector<Column> tableColumns) : columns(std::move(tableColumns)) {
  std::vector<std::string> titles;
  titles.reserve(columns.size());
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
