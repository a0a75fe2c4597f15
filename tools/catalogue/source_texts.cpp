#include "source_texts.h"

#include <array>

namespace nvsupport {
namespace {

#include "source_texts.inc"  // made by collect_texts

}  // namespace

std::span<const std::string_view> SourceTexts() {
  return sourceTexts;
}

std::span<const std::string_view> MessageTexts() {
  return messageTexts;
}

std::span<const DialogText> DialogTexts() {
  return dialogTexts;
}

}  // namespace nvsupport
