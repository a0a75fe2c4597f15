// A table of texts for the terminal, its columns as wide as their widest text.
#ifndef NVHOST_TERMINAL_TEXT_TABLE_H
#define NVHOST_TERMINAL_TEXT_TABLE_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace nvhost {

// A text that a terminal can show, and how many columns it takes. Texts come from a service: what is no UTF-8 or no
// printable character becomes "?", so that no text can play tricks on the terminal.
struct Printable {
  explicit Printable(std::string_view text);

  std::string text;
  std::size_t columns = 0;
};

class TextTable {
 public:
  enum class Align { left, right };
  struct Column {
    std::string title;
    Align align = Align::left;
  };

  explicit TextTable(std::vector<Column> tableColumns);

  // One text for each column.
  void AddRow(const std::vector<std::string>& texts);
  // All rows under their titles, each with a line feed.
  std::string Format() const;

 private:
  std::vector<Column> columns;
  std::vector<std::vector<Printable>> rows;  // the titles first
};

}  // namespace nvhost

#endif
