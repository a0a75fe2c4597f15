// The texts of the chosen language, keyed by the English source text, and a record of the texts that it lacks.
// docs/catalogue_format.md defines the file formats.
#ifndef NVSUPPORT_LANGUAGE_TRANSLATION_CATALOGUE_H
#define NVSUPPORT_LANGUAGE_TRANSLATION_CATALOGUE_H

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"

namespace nvsupport {

class CTranslationCatalogue {
 public:
  CTranslationCatalogue() = default;
  // Writes the miss file.
  ~CTranslationCatalogue();
  CTranslationCatalogue(const CTranslationCatalogue&) = delete;
  CTranslationCatalogue& operator=(const CTranslationCatalogue&) = delete;

  // Records the module whose file name gives the names of the catalogue files and chooses the language.
  void Init(HINSTANCE moduleHandle);
  // Takes the language from the registry, the user's before the installer's; the result is SetLanguage's.
  bool ChooseLanguage();
  // True if the catalogue has changed over to the language.
  bool SetLanguage(const std::string& name);
  const std::string& Language() const { return language; }

  // The text to show for an English source text; the same text, noted as a miss, when there is no entry. Valid until
  // the next load or the unload.
  std::string_view Translate(const std::string& text);

  // Empty if the module's path cannot be read.
  std::string GetCatalogueFileName(const std::string& name) const;
  // Replaces the entries by those of a file; true if it gave at least one. A file that cannot be read changes nothing.
  bool LoadCatalogueFile(const std::string& path);
  // Called once, at unload. Writes the misses below the user's documents, if the folder for them exists, and then
  // empties the catalogue, its translations included; only if the file cannot be opened, everything stays as it was.
  void WriteMissFile();

 private:
  // A source text and, right behind it, its translation.
  struct Entry {
    std::string_view Source() const { return {text, sourceSize}; }
    std::string_view Translation() const { return {text + sourceSize, translationSize}; }

    const char* text;
    std::uint32_t sourceSize;
    std::uint32_t translationSize;
  };

  // Empties the catalogue.
  void Clear();
  // Empty if the platform does not give the path, or if the path has more than 259 characters.
  std::string GetModulePath() const;

  std::string language;
  std::string texts;           // of all entries
  std::vector<Entry> entries;  // in byte order of their sources, each there once
  std::set<std::string> misses;
  HINSTANCE module = nullptr;
};

// The process-wide catalogue.
extern CTranslationCatalogue& translations;

// Translate of the process-wide catalogue.
std::string_view Translate(const std::string& text);

// Translate of a printf format. A translation whose conversions differ from the source's is not used, so no
// catalogue can make formatting read arguments that are not there.
std::string TranslateFormat(const std::string& format);

}  // namespace nvsupport

#endif
