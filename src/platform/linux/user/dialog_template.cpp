#include "dialog_template.h"

#include "byte_reader.h"
#include "styles.h"

namespace user {
namespace {

constexpr WORD templateVersion = 1;
constexpr WORD templateSignature = 0xFFFF;
constexpr WORD ordinalMark = 0xFFFF;  // introduces a number where a text could stand
constexpr WORD buttonClass = 0x80;
constexpr WORD editClass = 0x81;
constexpr WORD staticClass = 0x82;
constexpr std::size_t fontAttributesSize = 6;  // bytes: size, weight, italic, character set

constexpr char32_t replacementCharacter = 0xFFFD;

void AppendUtf8(std::string& text, char32_t character) {
  const auto tail = [character](unsigned shift) { return static_cast<char>(0x80 | (character >> shift & 0x3F)); };
  if (character < 0x80) {
    text += static_cast<char>(character);
  } else if (character < 0x800) {
    text += {static_cast<char>(0xC0 | character >> 6), tail(0)};
  } else if (character < 0x10000) {
    text += {static_cast<char>(0xE0 | character >> 12), tail(6), tail(0)};
  } else {
    text += {static_cast<char>(0xF0 | character >> 18), tail(12), tail(6), tail(0)};
  }
}

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
      AppendUtf8(text, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
      next = reader.Word();
    } else {
      AppendUtf8(text, IsHighSurrogate(unit) || IsLowSurrogate(unit) ? replacementCharacter : unit);
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

}  // namespace user
