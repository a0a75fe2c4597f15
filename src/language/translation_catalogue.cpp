#include "language/translation_catalogue.h"

#include <exception>
#include <optional>

#include "language/catalogue_reader.h"
#include "language/format_check.h"
#include "storage/files.h"

namespace nvsupport {
namespace {

// The language of the source texts, which needs no file.
constexpr const char* sourceLanguage = "English";

}  // namespace

CTranslationCatalogue::~CTranslationCatalogue() {
  try {
    WriteMissFile();
  } catch (const std::exception&) {
    // Out of memory while the host unloads the module: the list of misses is not worth its life.
  }
}

bool CTranslationCatalogue::SetLanguage(const std::string& name) {
  if (name == language) return false;
  const std::string catalogue = GetCatalogueFileName(name);
  const bool loaded = LoadCatalogueFile(catalogue);
  platform::TraceLanguage(name, catalogue, loaded ? entries.size() : 0);
  if (!loaded) {
    if (name != sourceLanguage) return false;
    entries.clear();
    misses.clear();
  }
  language = name;
  return true;
}

const std::string& CTranslationCatalogue::Translate(const std::string& text) {
  const auto entry = entries.find(text);
  return entry != entries.end() ? entry->second : *misses.insert(text).first;
}

std::string CTranslationCatalogue::GetModulePath() const {
  char path[MAX_PATH];
  const DWORD length = GetModuleFileNameA(module, path, MAX_PATH);
  return length < MAX_PATH ? std::string(path, length) : std::string();
}

std::string CTranslationCatalogue::GetCatalogueFileName(const std::string& name) const {
  const std::string path = GetModulePath();
  if (path.empty()) return {};
  return GetFolderOf(path) + '\\' + GetBaseNameOf(path) + '.' + name + ".txt";
}

bool CTranslationCatalogue::LoadCatalogueFile(const std::string& path) {
  const platform::FileStream file = platform::OpenFileStream(path.c_str(), "rb");
  if (!file) return false;
  const std::optional<std::string> bytes = ReadCatalogueBytes(file.get());
  if (!bytes) return false;

  entries.clear();
  misses.clear();
  CatalogueReader reader(*bytes);
  CatalogueRecord record;
  while (reader.Next(record)) {
    if (record.kind != RecordKind::entry) continue;
    // Sorted files are common, and with the hint each of their records goes straight to its place.
    entries.insert_or_assign(entries.end(), UnescapeCatalogueText(record.source),
                             UnescapeCatalogueText(record.translation));
  }
  return !entries.empty();
}

const std::string& Translate(const std::string& text) {
  return translations.Translate(text);
}

std::string TranslateFormat(const std::string& format) {
  const std::string& translated = Translate(format);
  return HaveSameConversions(format, translated) ? translated : format;
}

}  // namespace nvsupport
