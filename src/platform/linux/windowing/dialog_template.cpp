#include "dialog_template.h"

#include <algorithm>

#include "../module.h"
#include "../multibyte.h"
#include "window_tree.h"

// The module's own compiled script, put there by the build.
extern "C" const unsigned char module_resources_begin[];
extern "C" const unsigned char module_resources_end[];

namespace windowing {
namespace {

constexpr WORD templateVersion = 1;
constexpr WORD templateSignature = 0xFFFF;
constexpr WORD ordinalMark = 0xFFFF;  // what follows is a number in the place of a text
constexpr WORD buttonClass = 0x80;
constexpr WORD editClass = 0x81;
constexpr WORD staticClass = 0x82;
constexpr std::size_t fontAttributesSize = 6;  // bytes: size, weight, italic, character set

constexpr WORD dialogType = 5;
constexpr std::size_t sizesLength = 8;
constexpr std::uintptr_t largestNumber = 0xFFFF;

constexpr int unitsAcross = 4;  // of the average character
constexpr int unitsDown = 8;

constexpr char32_t replacementCharacter = 0xFFFD;

// Reads little-endian numbers from bytes that may be malformed. Behind their end it reads 0, and has failed.
class ByteReader {
 public:
  explicit ByteReader(Bytes source) : bytes(source) {}

  bool Good() const { return good; }
  bool AtEnd() const { return at == bytes.size(); }

  std::uint8_t Byte() { return static_cast<std::uint8_t>(Number(1)); }
  std::uint16_t Word() { return static_cast<std::uint16_t>(Number(2)); }
  std::int16_t Short() { return static_cast<std::int16_t>(Number(2)); }
  std::uint32_t DoubleWord() { return Number(4); }

  Bytes Take(std::size_t size) {
    if (size > bytes.size() - at) good = false;
    if (!good) return {};
    const Bytes taken = bytes.subspan(at, size);
    at += size;
    return taken;
  }
  // Goes on to the next multiple of 4, counted from the beginning, or to the end if that comes first.
  void Align() { at = std::min((at + 3) / 4 * 4, bytes.size()); }

 private:
  std::uint32_t Number(std::size_t size) {
    std::uint32_t value = 0;
    unsigned shift = 0;
    for (const unsigned char byte : Take(size)) {
      value |= static_cast<std::uint32_t>(byte) << shift;
      shift += 8;
    }
    return value;
  }

  Bytes bytes;
  std::size_t at = 0;
  bool good = true;
};

bool IsHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool IsLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

// The UTF-16 text that begins with `unit` and ends with 0, as UTF-8.
std::string ReadText(ByteReader& reader, char32_t unit) {
  std::string text;
  while (unit != 0) {
    char32_t next = reader.Word();
    if (IsHighSurrogate(unit) && IsLowSurrogate(next)) {
      platform::AppendUtf8(text, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
      next = reader.Word();
    } else {
      platform::AppendUtf8(text, IsHighSurrogate(unit) || IsLowSurrogate(unit) ? replacementCharacter : unit);
    }
    unit = next;
  }
  return text;
}

struct TextOrOrdinal {
  std::string text;
  WORD ordinal = 0;
};

TextOrOrdinal ReadTextOrOrdinal(ByteReader& reader) {
  const WORD unit = reader.Word();
  if (unit == ordinalMark) return {{}, reader.Word()};
  return {ReadText(reader, unit), 0};
}

UnitRect ReadPlace(ByteReader& reader) {
  return {reader.Short(), reader.Short(), reader.Short(), reader.Short()};
}

std::optional<ControlKind> ButtonKind(LONG_PTR style) {
  switch (style & styleControlType) {
    case stylePushButton:
    case styleDefaultPushButton:
      return ControlKind::pushButton;
    case styleCheckBox:
    case styleAutoCheckBox:
    case styleThreeState:
    case styleAutoThreeState:
      return ControlKind::checkBox;
    default:
      return std::nullopt;
  }
}

std::optional<ControlKind> KindOf(WORD windowClass, LONG_PTR style) {
  switch (windowClass) {
    case buttonClass:
      return ButtonKind(style);
    case editClass:
      return ControlKind::edit;
    case staticClass:
      return ControlKind::label;
    default:
      return std::nullopt;
  }
}

std::optional<ControlTemplate> ReadControl(ByteReader& reader) {
  reader.Align();
  reader.DoubleWord();  // help id
  reader.DoubleWord();  // extended style
  ControlTemplate control{};
  control.style = reader.DoubleWord();
  control.place = ReadPlace(reader);
  control.id = static_cast<int>(reader.DoubleWord());
  const std::optional<ControlKind> kind = KindOf(ReadTextOrOrdinal(reader).ordinal, control.style);
  control.text = ReadTextOrOrdinal(reader).text;
  reader.Take(reader.Word());  // creation data
  if (!reader.Good() || !kind) return std::nullopt;
  control.kind = *kind;
  return control;
}

// Reads a number; a name in its place is skipped and gives 0.
WORD ReadNumberOrName(ByteReader& header) {
  WORD unit = header.Word();
  if (unit == ordinalMark) return header.Word();
  while (unit != 0) unit = header.Word();
  return 0;
}

LONG ToPixels(int units, LONG base, int unitsOfBase) {
  const int scaled = units * static_cast<int>(base) * 2 / unitsOfBase;
  return static_cast<LONG>((scaled + (scaled < 0 ? -1 : 1)) / 2);
}

}  // namespace

std::optional<DialogTemplate> ParseDialogTemplate(Bytes bytes) {
  ByteReader reader(bytes);
  if (reader.Word() != templateVersion || reader.Word() != templateSignature) return std::nullopt;
  reader.DoubleWord();  // help id
  reader.DoubleWord();  // extended style
  DialogTemplate dialog{};
  dialog.style = reader.DoubleWord();
  const WORD count = reader.Word();
  dialog.place = ReadPlace(reader);
  ReadTextOrOrdinal(reader);  // menu
  ReadTextOrOrdinal(reader);  // window class
  dialog.title = ReadTextOrOrdinal(reader).text;
  if ((dialog.style & styleSetFont) != 0) {
    reader.Take(fontAttributesSize);
    ReadText(reader, reader.Word());
  }
  while (dialog.controls.size() < count) {
    std::optional<ControlTemplate> control = ReadControl(reader);
    if (!control) return std::nullopt;
    dialog.controls.push_back(std::move(*control));
  }
  if (!reader.Good()) return std::nullopt;
  return dialog;
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
  if (module == nullptr || module != GetModuleHandleA(nullptr) || number == 0 || number > largestNumber) return {};
  return FindDialogTemplateIn({module_resources_begin, module_resources_end}, static_cast<WORD>(number));
}

RECT ToPixels(const UnitRect& place, POINT base) {
  const LONG left = ToPixels(place.x, base.x, unitsAcross);
  const LONG top = ToPixels(place.y, base.y, unitsDown);
  return {left, top, left + ToPixels(place.width, base.x, unitsAcross),
          top + ToPixels(place.height, base.y, unitsDown)};
}

}  // namespace windowing
