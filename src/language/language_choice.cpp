// Which language is used: the user's, else the installer's, else that of the source texts.
#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include "language/translation_catalogue.h"
#include "storage/desktop.h"

namespace nvsupport {
namespace {

struct InstalledLanguage {
  int localeId;
  const char* name;
};

constexpr std::array<InstalledLanguage, 5> installedLanguages = {{
    {0x407, "Deutsch"},
    {0x409, "English"},
    {0x40C, "Francais"},
    {0x413, "Nederlands"},
    {0x809, "English"},
}};

// As atoi: leading white space, a sign, digits up to the first other character. 0 without digits, and for a number
// that no int holds.
int ParseNumber(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  if (text.starts_with('+')) text.remove_prefix(1);
  int number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

const char* LanguageOfLocale(int localeId) {
  for (const InstalledLanguage& language : installedLanguages) {
    if (language.localeId == localeId) return language.name;
  }
  return "";
}

}  // namespace

void CTranslationCatalogue::Init(HINSTANCE moduleHandle) {
  module = moduleHandle;
  ChooseLanguage();
  platform::SetDisplayLanguage(language);
}

bool CTranslationCatalogue::ChooseLanguage() {
  // Any name will do: it only ever becomes part of the name of a file that is read, within bounds, as a catalogue.
  std::string name = GetRegistryText(HKEY_CURRENT_USER, "Software\\Norvane", "Language", "");
  if (name.empty()) {
    name = LanguageOfLocale(ParseNumber(GetRegistryText(HKEY_LOCAL_MACHINE, "SOFTWARE\\Norvane", "inst_language", "")));
  }
  return SetLanguage(name);
}

}  // namespace nvsupport
