#include "language/translation_catalogue.h"

#include <algorithm>
#include <exception>
#include <optional>

#include "language/catalogue_reader.h"
#include "language/format_check.h"
#include "storage/files.h"

namespace nvsupport {
namespace {

// The language of the source texts, which needs no file.
constexpr const char* sourceLanguage = "English";

bool Exists(const std::string& path) {
  return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

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
    Clear();
  }
  language = name;
  return true;
}

std::string_view CTranslationCatalogue::Translate(const std::string& text) {
  // Three ways at each step: the two of std::lower_bound take longer, and much longer where they become no branch.
  for (std::size_t first = 0, last = entries.size(); first < last;) {
    const std::size_t middle = (first + last) / 2;
    const int order = entries[middle].Source().compare(text);
    if (order == 0) return entries[middle].Translation();
    if (order < 0) {
      first = middle + 1;
    } else {
      last = middle;
    }
  }
  return *misses.insert(text).first;
}

void CTranslationCatalogue::Clear() {
  entries.clear();
  texts.clear();
  misses.clear();
}

std::string CTranslationCatalogue::GetModulePath() const {
  char path[MAX_PATH];
  const DWORD length = GetModuleFileNameA(module, path, MAX_PATH);
  return length < MAX_PATH ? std::string(path, length) : std::string();
}

std::string CTranslationCatalogue::GetCatalogueFileName(const std::string& name) const {
  const std::string path = GetModulePath();
  if (path.empty()) return {};
  const auto beside = [&name](const std::string& file) {
    return GetFolderOf(file) + '\\' + GetBaseNameOf(file) + '.' + name + ".txt";
  };
  // A module that was loaded through a link may have its catalogues where the link leads.
  const std::string catalogue = beside(path);
  const std::string ofTarget = beside(platform::ResolveLinks(path));
  return !Exists(catalogue) && Exists(ofTarget) ? ofTarget : catalogue;
}

bool CTranslationCatalogue::LoadCatalogueFile(const std::string& path) {
  const platform::FileStream file = platform::OpenFileStream(path.c_str(), "rb");
  if (!file) return false;
  std::optional<std::string> bytes = ReadCatalogueBytes(file.get());
  if (!bytes) return false;

  Clear();
  texts = std::move(*bytes);
  CatalogueReader reader(texts);
  CatalogueRecord record;
  // The texts are kept where the file was: they take up less than what has been read.
  char* end = texts.data();
  while (reader.Next(record)) {
    if (record.kind != RecordKind::entry) continue;
    const char* const source = end;
    const char* const translation = UnescapeCatalogueText(record.source, end);
    end = UnescapeCatalogueText(record.translation, end + (translation - source));
    entries.push_back(
        {source, static_cast<std::uint32_t>(translation - source), static_cast<std::uint32_t>(end - translation)});
  }
  std::ranges::stable_sort(entries, {}, &Entry::Source);
  // Of records with the same source the later one counts: seen from the back, the first.
  const auto sameSource = [](const Entry& one, const Entry& other) { return one.Source() == other.Source(); };
  entries.erase(entries.begin(), std::unique(entries.rbegin(), entries.rend(), sameSource).base());
  return !entries.empty();
}

std::string_view Translate(const std::string& text) {
  return translations.Translate(text);
}

std::string TranslateFormat(const std::string& format) {
  const std::string_view translated = Translate(format);
  return HaveSameConversions(format, translated) ? std::string(translated) : format;
}

}  // namespace nvsupport
