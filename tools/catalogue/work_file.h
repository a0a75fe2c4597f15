// Work files are the catalogues in UTF-8 that translators edit. They are converted from and to the 16-bit form of miss
// files and spreadsheets, and brought up to today's texts. Each function gives the new file's bytes, or says what
// prevents that, and where.
#ifndef NVSUPPORT_TOOLS_CATALOGUE_WORK_FILE_H
#define NVSUPPORT_TOOLS_CATALOGUE_WORK_FILE_H

#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "catalogue_check.h"

namespace nvsupport {

using NewFile = std::variant<std::string, Finding>;

// From the 16-bit form. A miss file of Linux holds the bytes of UTF-8, one in each unit. Each quote gets a backslash in
// front, in the lines of miss files as in the cells of spreadsheets.
NewFile ToUtf8(std::string_view bytes);

// To the 16-bit form, which spreadsheets open.
NewFile ToUtf16(std::string_view bytes);

// Marks an orphan, a line that is kept although the library has no such text.
inline constexpr std::string_view orphanMark = "#~ ";

// Today's texts in their order, with their translation or the placeholder. Behind them, marked, stand all other
// translations of the file, so that a text that comes back gets its translation again.
NewFile Update(std::string_view bytes, std::span<const std::string_view> texts);

}  // namespace nvsupport

#endif
