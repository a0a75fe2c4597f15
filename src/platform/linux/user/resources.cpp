#include "resources.h"

#include <utility>
#include <vector>

#include "../module.h"
#include "byte_reader.h"

// The module's own compiled script, put there by the build.
extern "C" const unsigned char module_resources_begin[];
extern "C" const unsigned char module_resources_end[];

namespace user {
namespace {

constexpr WORD ordinalMark = 0xFFFF;  // introduces a number where a name could stand
constexpr WORD dialogType = 5;
constexpr std::size_t sizesLength = 8;
constexpr std::uintptr_t largestNumber = 0xFFFF;

using Scripts = std::vector<std::pair<HINSTANCE, Bytes>>;

Scripts& KnownScripts() {
  static Scripts scripts{{GetModuleHandleA(nullptr), Bytes(module_resources_begin, module_resources_end)}};
  return scripts;
}

// A number, or 0 for a name, which is skipped.
WORD ReadNumberOrName(ByteReader& header) {
  WORD unit = header.Word();
  if (unit == ordinalMark) return header.Word();
  while (unit != 0) unit = header.Word();
  return 0;
}

}  // namespace

void AddResources(HINSTANCE module, Bytes compiledScript) {
  KnownScripts().emplace_back(module, compiledScript);
}

Bytes FindDialogTemplateIn(Bytes compiledScript, WORD id) {
  ByteReader script(compiledScript);
  while (script.Good() && !script.AtEnd()) {
    const std::uint32_t dataSize = script.DoubleWord();
    const std::uint32_t headerSize = script.DoubleWord();
    if (headerSize < sizesLength) return {};
    ByteReader header(script.Take(headerSize - sizesLength));
    const WORD type = ReadNumberOrName(header);
    const WORD name = ReadNumberOrName(header);
    const Bytes data = script.Take(dataSize);
    if (header.Good() && type == dialogType && name == id) return data;
    script.Align();
  }
  return {};
}

Bytes FindDialogTemplate(HINSTANCE module, LPCSTR name) {
  const auto number = reinterpret_cast<std::uintptr_t>(name);
  if (module == nullptr || number == 0 || number > largestNumber) return {};
  for (const auto& [owner, script] : KnownScripts()) {
    const Bytes found = owner == module ? FindDialogTemplateIn(script, static_cast<WORD>(number)) : Bytes();
    if (!found.empty()) return found;
  }
  return {};
}

}  // namespace user
