// Catalogues, settings and strings: what the library does with texts in files and in memory.
#include <algorithm>
#include <cstring>

#include "bench_data.h"
#include "language/translation_catalogue.h"
#include "storage/settings_file.h"
#include "wire/type_serializer.h"

namespace nvsupport::bench {
namespace {

void CatalogueLoad(benchmark::State& state, std::int64_t size) {
  const std::string file = DataFile("catalogue-" + std::to_string(size) + ".txt");
  for (auto _ : state) {
    CTranslationCatalogue catalogue;
    if (!catalogue.LoadCatalogueFile(file)) state.SkipWithError("the catalogue was not loaded");
  }
}

void CatalogueLookup(benchmark::State& state, std::int64_t size) {
  const std::string number = std::to_string(size);
  CTranslationCatalogue catalogue;
  const bool loaded = catalogue.LoadCatalogueFile(DataFile("catalogue-" + number + ".txt"));
  const std::vector<std::string> texts = LinesOf(DataFile("lookups-" + number + ".txt"));
  if (!loaded || texts.empty()) return state.SkipWithError("no texts");
  for (auto _ : state) {
    std::size_t at = 0;
    for (int i = 0; i < 1'000'000; ++i) {
      benchmark::DoNotOptimize(catalogue.Translate(texts[at]).data());
      if (++at == texts.size()) at = 0;
    }
  }
}

std::string SettingsFile(std::int64_t size) {
  return DataFile("settings-" + std::to_string(size) + ".ini");
}

void SettingsLoad(benchmark::State& state, std::int64_t size) {
  const std::string file = SettingsFile(size);
  for (auto _ : state) {
    CSettingsFile settings;
    if (!settings.Load(file)) state.SkipWithError("the settings were not loaded");
  }
}

void SettingsSave(benchmark::State& state, std::int64_t size) {
  CSettingsFile settings;
  if (!settings.Load(SettingsFile(size))) return state.SkipWithError("the settings were not loaded");
  const std::string file = TemporaryFolder() + "/saved.ini";
  for (auto _ : state) {
    if (!settings.Save(file)) state.SkipWithError("the settings were not saved");
  }
}

// A body in memory.
class Memory final : public CTypeSerializer {
 public:
  void Write(const void* data, std::int32_t size) override {
    const auto* const from = static_cast<const std::uint8_t*>(data);
    bytes.insert(bytes.end(), from, from + size);
  }
  bool Read(void*, std::int32_t) override { return false; }  // all there is was read ahead
  void Clear() { bytes.clear(); }
  void Rewind() {
    readAhead = bytes.data();
    readPos = 0;
    readEnd = static_cast<std::uint32_t>(bytes.size());
  }

 private:
  std::vector<std::uint8_t> bytes;
};

void WriteBody(Memory& body, const std::vector<std::string>& lines) {
  body.Clear();
  for (const std::string& line : lines) body.WriteString(line);
}

void WriteStrings(benchmark::State& state) {
  const std::vector<std::string> lines = LinesOf(DataFile("strings.txt"));
  Memory body;
  for (auto _ : state) {
    for (int i = 0; i < 1000; ++i) WriteBody(body, lines);
  }
}

void ReadStrings(benchmark::State& state) {
  const std::vector<std::string> lines = LinesOf(DataFile("strings.txt"));
  Memory body;
  WriteBody(body, lines);
  std::string text;
  for (auto _ : state) {
    for (int i = 0; i < 1000; ++i) {
      body.Rewind();
      for (std::size_t line = 0; line < lines.size(); ++line) {
        if (!body.ReadString(text)) state.SkipWithError("a text is missing");
      }
    }
  }
}

BENCHMARK(WriteStrings)->Name("write_string")->Unit(benchmark::kMillisecond);
BENCHMARK(ReadStrings)->Name("read_string")->Unit(benchmark::kMillisecond);

[[maybe_unused]] const bool registered = [] {
  RegisterSizes("catalogue_load", "catalogue", ".txt", &CatalogueLoad);
  RegisterSizes("catalogue_lookup", "lookups", ".txt", &CatalogueLookup);
  RegisterSizes("settings_load", "settings", ".ini", &SettingsLoad);
  RegisterSizes("settings_save", "settings", ".ini", &SettingsSave);
  return true;
}();

}  // namespace
}  // namespace nvsupport::bench
