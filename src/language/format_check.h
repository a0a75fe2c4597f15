// Whether a translated printf format takes the same arguments as its source. TranslateFormat
// (translation_catalogue.h) does not use one that differs; the translators' tool reports it.
#ifndef NVSUPPORT_LANGUAGE_FORMAT_CHECK_H
#define NVSUPPORT_LANGUAGE_FORMAT_CHECK_H

#include <string_view>

namespace nvsupport {

// True if both hold the same conversions, letter for letter with flags and sizes, in the same order. "%%" does not
// count.
bool HaveSameConversions(std::string_view source, std::string_view translation);

}  // namespace nvsupport

#endif
