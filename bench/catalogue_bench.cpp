// Loading a catalogue and looking texts up in it, against GNU gettext with the same texts in the same run. gettext
// maps its compiled file and puts the work off to the lookups; the catalogue reads its text file and builds its map.
#include <benchmark/benchmark.h>
#include <libintl.h>

#include <algorithm>
#include <chrono>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <vector>

#include "language/translation_catalogue.h"

namespace nvsupport {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

// The same texts as a catalogue and as a compiled message file, in a folder that goes with the object.
class Texts {
 public:
  explicit Texts(std::int64_t count) {
    std::string name = (fs::temp_directory_path() / "nvsupport-bench-XXXXXX").string();
    folder = mkdtemp(name.data());
    fs::create_directories(folder / "de" / "LC_MESSAGES");
    for (std::int64_t i = 0; i < count; ++i) {
      const std::string number = std::to_string(i);
      sources.push_back("Message " + number + " tells the user what went wrong with the " + number + "th request.");
    }
    std::ofstream catalogue(folder / "texts.txt", std::ios::binary);
    std::ofstream messages(folder / "texts.po", std::ios::binary);
    messages << "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n";
    std::shuffle(sources.begin(), sources.end(), std::mt19937(1));
    for (const std::string& source : sources) {
      catalogue << source << '\t' << Translation(source) << "\r\n";
      messages << "msgid \"" << source << "\"\nmsgstr \"" << Translation(source) << "\"\n";
    }
    catalogue.close();
    messages.close();
    const std::string compile = "msgfmt -o '" + (folder / "texts.mo").string() + "' '" + (folder / "texts.po").string();
    compiled = std::system((compile + "'").c_str()) == 0;
    // gettext translates only in a locale other than "C", and takes the language from here.
    std::setlocale(LC_ALL, "C.UTF-8");
    setenv("LANGUAGE", "de", 1);
  }
  ~Texts() {
    std::error_code ignored;
    fs::remove_all(folder, ignored);
  }
  Texts(const Texts&) = delete;
  Texts& operator=(const Texts&) = delete;

  static std::string Translation(const std::string& source) { return "Deutsch: " + source; }
  std::string CatalogueFile() const { return (folder / "texts.txt").string(); }

  // A domain that gettext has not seen, with the texts in it.
  std::string NewDomain() const {
    static int domains = 0;
    const std::string domain = "texts" + std::to_string(++domains);
    fs::copy_file(folder / "texts.mo", folder / "de" / "LC_MESSAGES" / (domain + ".mo"));
    bindtextdomain(domain.c_str(), folder.c_str());
    return domain;
  }

  std::vector<std::string> sources;
  bool compiled = false;

 private:
  fs::path folder;
};

// Our time is the benchmark's; gettext's stands beside it, and how many times as long ours takes.
void Report(benchmark::State& state, double ours, double gettext, double operations) {
  state.counters["gettext_ns"] = gettext / operations * 1e9;
  state.counters["ours_ns"] = ours / operations * 1e9;
  state.counters["times_gettext"] = ours / gettext;
}

void CatalogueLoad(benchmark::State& state) {
  const Texts texts(state.range(0));
  const std::string& first = texts.sources.front();
  double ours = 0;
  double gettext = 0;
  for (auto _ : state) {
    CTranslationCatalogue catalogue;
    const Clock::time_point start = Clock::now();
    bool loaded = catalogue.LoadCatalogueFile(texts.CatalogueFile());
    const double seconds = SecondsSince(start);
    ours += seconds;
    state.SetIterationTime(seconds);

    const std::string domain = texts.NewDomain();
    const Clock::time_point gettextStart = Clock::now();
    const std::string_view translated = dgettext(domain.c_str(), first.c_str());
    gettext += SecondsSince(gettextStart);
    loaded = loaded && texts.compiled && catalogue.Translate(first) == translated && translated != first;
    if (!loaded) state.SkipWithError("the texts were not loaded");
  }
  Report(state, ours, gettext, static_cast<double>(state.iterations()));
}

void CatalogueLookup(benchmark::State& state) {
  const Texts texts(state.range(0));
  CTranslationCatalogue catalogue;
  catalogue.LoadCatalogueFile(texts.CatalogueFile());
  const std::string domain = texts.NewDomain();
  std::vector<std::string> wanted = texts.sources;
  std::shuffle(wanted.begin(), wanted.end(), std::mt19937(2));
  for (const std::string& text : wanted) {
    if (catalogue.Translate(text) == dgettext(domain.c_str(), text.c_str()) && catalogue.Translate(text) != text)
      continue;
    return state.SkipWithError("a text was not found");
  }
  double ours = 0;
  double gettext = 0;
  for (auto _ : state) {
    const Clock::time_point start = Clock::now();
    for (const std::string& text : wanted) benchmark::DoNotOptimize(catalogue.Translate(text).data());
    const double seconds = SecondsSince(start);
    ours += seconds;
    state.SetIterationTime(seconds);

    const Clock::time_point gettextStart = Clock::now();
    for (const std::string& text : wanted) benchmark::DoNotOptimize(dgettext(domain.c_str(), text.c_str()));
    gettext += SecondsSince(gettextStart);
  }
  Report(state, ours, gettext, static_cast<double>(state.iterations()) * static_cast<double>(wanted.size()));
}

// Each load stays mapped by gettext for the life of the process, so their number is fixed.
BENCHMARK(CatalogueLoad)
    ->Name("catalogue_load")
    ->RangeMultiplier(10)
    ->Range(1000, 100000)
    ->Iterations(20)
    ->UseManualTime();
BENCHMARK(CatalogueLookup)->Name("catalogue_lookup")->RangeMultiplier(10)->Range(1000, 100000)->UseManualTime();

}  // namespace
}  // namespace nvsupport
