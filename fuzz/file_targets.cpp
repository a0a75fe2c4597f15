// What the library reads from files and resources.
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>

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

// A value comes back. What was saved loads to the same entries, once keys that look like comments are gone.
void Settings(std::string_view input) {
  static const testing::TemporaryFolder folder;
  const std::string first = folder / "first";
  const std::string second = folder / "second";
  const std::string third = folder / "third";
  CSettingsFile settings;
  settings.SetText("key", std::string(input));
  Require(settings.Save(first));
  CSettingsFile loaded;
  Require(loaded.Load(first) && loaded.GetText("key") == input);
  // Escapes can make it too large to load.
  if (!CopySettings(FileWith(input), first) || !CopySettings(first, second) || !CopySettings(second, third)) return;
  Require(testing::ReadWholeFile(second) == testing::ReadWholeFile(third));
}

// Every text has the translation of its last record, as the translators' tool reads them, and any other one none.
void Catalogue(std::string_view input) {
  CTranslationCatalogue catalogue;
  const bool loaded = catalogue.LoadCatalogueFile(FileWith(input));
  std::map<std::string, std::string> expected;
  CatalogueReader reader(input);
  CatalogueRecord record;
  while (reader.Next(record)) {
    if (record.kind != RecordKind::entry) continue;
    expected[UnescapeCatalogueText(record.source)] = UnescapeCatalogueText(record.translation);
  }
  Require(loaded == !expected.empty());
  for (const auto& [source, translation] : expected) Require(catalogue.Translate(source) == translation);
}

void Free(CSerializable* object) {
  if (auto* const list = dynamic_cast<CSerializableList*>(object)) {
    for (CSerializable* element : *list) Free(element);
  }
  delete object;
}

// What was read is written and read again, and written as it was the first time.
std::string Rewritten(std::string bytes) {
  const platform::FileStream from(fmemopen(bytes.data(), bytes.size(), "rb"));
  char* buffer = nullptr;
  std::size_t size = 0;
  platform::FileStream to(open_memstream(&buffer, &size));
  ChunkReader reader{from.get()};
  ChunkWriter writer{to.get()};
  while (CSerializable* const object = reader.ReadChunk().release()) {
    Require(object->WriteChunk(writer));
    Free(object);
  }
  to.reset();
  std::string written(buffer, size);
  std::free(buffer);
  return written;
}

void ObjectFile(std::string_view input) {
  if (input.empty()) return;  // of which fmemopen makes no stream
  const std::string written = Rewritten(std::string(input));
  if (!written.empty()) Require(Rewritten(written) == written);
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
  const bool same = HaveSameConversions(source, translation);
  Require(same == HaveSameConversions(translation, source));
  Require(same == HaveSameConversions("%%" + std::string(source), translation));
  Require(HaveSameConversions(source, source));
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
