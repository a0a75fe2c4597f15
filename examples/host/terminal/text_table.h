// A table of texts for the terminal, its columns as wide as their widest text.
#ifndef NVHOST_TERMINAL_TEXT_TABLE_H
#define NVHOST_TERMINAL_TEXT_TABLE_H

#include <string>
#include <vector>

#include "printable.h"

namespace nvhost {

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
  // The titles and all rows, each with a line feed.
  std::string Format() const;

 private:
  std::vector<Column> columns;
  std::vector<std::vector<Printable>> rows;  // the titles first
};

}  // namespace nvhost

#endif
