// Work files: catalogues in UTF-8 as translators edit them; from and to the 16-bit form of miss files and spreadsheets,
// and brought up to today's texts. Each function gives the new file's bytes, or says what prevents that, and where.
#ifndef NVSUPPORT_TOOLS_CATALOGUE_WORK_FILE_H
#define NVSUPPORT_TOOLS_CATALOGUE_WORK_FILE_H

#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "catalogue_check.h"

namespace nvsupport {

using NewFile = std::variant<std::string, Finding>;

// From the 16-bit form. A column of a miss file of Linux holds the bytes of UTF-8, one in each unit. Quotes get a
// backslash in front, whether they stand raw as in miss files or in a cell of a spreadsheet.
NewFile ToUtf8(std::string_view bytes);

// To the 16-bit form, which spreadsheets open.
NewFile ToUtf16(std::string_view bytes);

// Front of the source text of a line that is kept although the library has no such text.
inline constexpr std::string_view orphanMark = "#~ ";

// Today's texts in their order, with their translation or the placeholder; behind them, marked, each further
// translation that the file holds, from which a text gets its translation back when it returns.
NewFile Update(std::string_view bytes, std::span<const std::string_view> texts);

}  // namespace nvsupport

#endif
