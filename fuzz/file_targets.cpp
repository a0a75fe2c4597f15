// What the library reads from files and resources.
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "fuzz.h"
#include "language/catalogue_reader.h"
#include "language/format_check.h"
#include "language/translation_catalogue.h"
#include "platform/linux/files/xdg_folders.h"
#include "platform/linux/registry/registry_file.h"
#include "platform/linux/windowing/dialog_template.h"
#include "storage/settings_file.h"
#include "support/temporary_home.h"
#include "wire/serializable.h"

namespace nvsupport::fuzz {
namespace {

// Loads what the file at `from` holds and saves it to `to`; false if it does not load.
bool CopySettings(const std::string& from, const std::string& to) {
  CSettingsFile settings;
  if (!settings.Load(from)) return false;
  Require(settings.Save(to));
  return true;
}

// What was saved loads to the same entries, once keys that look like comments are gone.
void Settings(std::string_view input) {
  static const testing::TemporaryFolder folder;
  const std::string first = folder / "first";
  const std::string second = folder / "second";
  const std::string third = folder / "third";
  // Escapes can make it too large to load.
  if (!CopySettings(FileWith(input), first) || !CopySettings(first, second) || !CopySettings(second, third)) return;
  Require(testing::ReadWholeFile(second) == testing::ReadWholeFile(third));
}

void Catalogue(std::string_view input) {
  CTranslationCatalogue catalogue;
  catalogue.LoadCatalogueFile(FileWith(input));
  CatalogueReader reader(input);
  CatalogueRecord record;
  while (reader.Next(record)) {
    if (record.kind == RecordKind::entry) catalogue.Translate(UnescapeCatalogueText(record.source));
  }
}

void Free(CSerializable* object) {
  if (auto* const list = dynamic_cast<CSerializableList*>(object)) {
    for (CSerializable* element : *list) Free(element);
  }
  delete object;
}

void ObjectFile(std::string_view input) {
  if (input.empty()) return;  // of which fmemopen makes no stream
  std::string bytes(input);
  const platform::FileStream stream(fmemopen(bytes.data(), bytes.size(), "rb"));
  ChunkReader reader{stream.get()};
  while (CSerializable* const object = reader.ReadChunk().release()) Free(object);
}

void Registry(std::string_view input) {
  platform::FindRegistryKey(input, "HKEY_CURRENT_USER\\Software\\Norvane");
}

windowing::Bytes BytesOf(std::string_view input) {
  return {reinterpret_cast<const unsigned char*>(input.data()), input.size()};
}

void DialogTemplate(std::string_view input) {
  windowing::ParseDialogTemplate(BytesOf(input));
}

void CompiledScript(std::string_view input) {
  windowing::ParseDialogTemplate(windowing::FindDialogTemplateIn(BytesOf(input), 101));
}

void UserDirs(std::string_view input) {
  static const testing::TemporaryFolder folder;
  setenv("XDG_CONFIG_HOME", folder.path.c_str(), 1);
  unsetenv("XDG_DOCUMENTS_DIR");
  testing::WriteWholeFile(folder / "user-dirs.dirs", std::string(input));
  Require(platform::DocumentsFolder().starts_with('/'));
}

// Two formats, apart by the first line feed.
void FormatCheck(std::string_view input) {
  const std::size_t end = std::min(input.find('\n'), input.size());
  const std::string_view source = input.substr(0, end);
  const std::string_view translation = input.substr(std::min(end + 1, input.size()));
  Require(HaveSameConversions(source, translation) == HaveSameConversions(translation, source));
}

}  // namespace

const Target fileTargets[8] = {
    {"settings", &Settings},
    {"catalogue", &Catalogue},
    {"object_file", &ObjectFile},
    {"registry", &Registry},
    {"dialog_template", &DialogTemplate},
    {"compiled_script", &CompiledScript},
    {"user_dirs", &UserDirs},
    {"format_check", &FormatCheck},
};

}  // namespace nvsupport::fuzz
