// The translator's work list: the texts that the catalogue lacked, as a catalogue file of the wide form.
#include "language/catalogue_reader.h"
#include "language/translation_catalogue.h"
#include "storage/files.h"

namespace nvsupport {
namespace {

constexpr std::string_view placeholderColumn = "\tXXXX\r\n";

void AppendWide(std::string& bytes, std::string_view text) {
  for (const char character : text) {
    bytes += character;
    bytes += '\0';
  }
}

void AppendMiss(std::string& bytes, std::string_view text) {
  for (const char& character : text) {
    if (character == '\t') {
      AppendWide(bytes, "\\t");
    } else if (character == '\n') {
      AppendWide(bytes, "\\n");
    } else {
      AppendWide(bytes, {&character, 1});
    }
  }
  AppendWide(bytes, placeholderColumn);
}

// The folder whose existence asks for miss files; empty if the user has no documents folder.
std::string GetMissFolder() {
  const std::string documents = GetSpecialFolder(CSIDL_PERSONAL);
  return documents.empty() ? std::string() : documents + "\\NVTranslation";
}

}  // namespace

void CTranslationCatalogue::WriteMissFile() {
  const std::string folder = misses.empty() ? std::string() : GetMissFolder();
  if (!folder.empty() && IsFolder(folder)) {
    const std::string modulePath = GetModulePath();
    const std::string name = modulePath.empty() ? "module" : GetBaseNameOf(modulePath);
    std::string bytes(wideCatalogueMark);
    for (const std::string& miss : misses) AppendMiss(bytes, miss);
    const platform::FileStream file = platform::OpenFileStream((folder + '\\' + name + ".txt").c_str(), "wb");
    if (!file) return;
    std::fwrite(bytes.data(), 1, bytes.size(), file.get());
  }
  Clear();
}

}  // namespace nvsupport
