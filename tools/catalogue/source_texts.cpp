#include "source_texts.h"

#include <array>

namespace nvsupport {
namespace {

constexpr auto sourceTexts = std::to_array<std::string_view>({
#include "source_texts.inc"  // made by collect_texts
});

}  // namespace

std::span<const std::string_view> SourceTexts() {
  return sourceTexts;
}

}  // namespace nvsupport
