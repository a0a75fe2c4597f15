// The jobs of text_bench.cpp done by GNU gettext, std::map, GLib and protobuf, on the same files.
#include <glib.h>
#include <google/protobuf/io/coded_stream.h>
#include <google/protobuf/io/zero_copy_stream_impl_lite.h>
#include <google/protobuf/wire_format_lite.h>
#include <libintl.h>

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>

#include "bench_data.h"
#include "map_shop.pb.h"

namespace nvsupport::bench {
namespace {

namespace fs = std::filesystem;
using google::protobuf::internal::WireFormatLite;

std::string Catalogue(std::int64_t size) {
  return DataFile("catalogue-" + std::to_string(size) + ".txt");
}

std::map<std::string, std::string> PlainMap(const std::string& path) {
  std::map<std::string, std::string> entries;
  std::ifstream file(path, std::ios::binary);
  for (std::string line; std::getline(file, line);) {
    if (line.ends_with('\r')) line.pop_back();
    const std::size_t tab = line.find('\t');
    if (tab != std::string::npos) entries[line.substr(0, tab)] = line.substr(tab + 1);
  }
  return entries;
}

void MapLoad(benchmark::State& state, std::int64_t size) {
  const std::string path = Catalogue(size);
  for (auto _ : state) {
    if (PlainMap(path).empty()) state.SkipWithError("the catalogue was not loaded");
  }
}

// Compiles the catalogue for gettext under a name that it has not seen; empty if msgfmt failed.
std::string NewDomain(std::int64_t size) {
  static int domains = 0;
  const std::string domain = "texts" + std::to_string(++domains);
  const std::string folder = TemporaryFolder() + "/de/LC_MESSAGES";
  fs::create_directories(folder);
  const std::string source = TemporaryFolder() + "/texts.po";
  std::ofstream messages(source, std::ios::binary);
  messages << "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n";
  for (const auto& [text, translation] : PlainMap(Catalogue(size))) {
    messages << "msgid \"" << text << "\"\nmsgstr \"" << translation << "\"\n";
  }
  messages.close();
  const std::string compile = "msgfmt -o '" + folder + '/' + domain + ".mo' '" + source + "'";
  if (std::system(compile.c_str()) != 0) return {};
  // gettext translates only in a locale other than "C", and takes the language from here.
  std::setlocale(LC_ALL, "C.UTF-8");
  setenv("LANGUAGE", "de", 1);
  bindtextdomain(domain.c_str(), TemporaryFolder().c_str());
  return domain;
}

void GettextLookup(benchmark::State& state, std::int64_t size) {
  const std::vector<std::string> texts = LinesOf(DataFile("lookups-" + std::to_string(size) + ".txt"));
  const std::string domain = NewDomain(size);
  if (texts.empty() || dgettext(domain.c_str(), texts[0].c_str()) == texts[0]) return state.SkipWithError("no texts");
  for (auto _ : state) {
    std::size_t at = 0;
    for (int i = 0; i < 1'000'000; ++i) {
      benchmark::DoNotOptimize(dgettext(domain.c_str(), texts[at].c_str()));
      if (++at == texts.size()) at = 0;
    }
  }
}

// The settings as a key file, which has its keys in a group.
std::string KeyFile(std::int64_t size) {
  const std::string path = TemporaryFolder() + "/settings.key";
  std::ofstream file(path, std::ios::binary);
  file << "[settings]\n";
  for (const std::string& line : LinesOf(DataFile("settings-" + std::to_string(size) + ".ini"))) file << line << '\n';
  return path;
}

GKeyFile* LoadKeyFile(const std::string& path) {
  GKeyFile* const keys = g_key_file_new();
  if (g_key_file_load_from_file(keys, path.c_str(), G_KEY_FILE_NONE, nullptr)) return keys;
  g_key_file_free(keys);
  return nullptr;
}

void KeyFileLoad(benchmark::State& state, std::int64_t size) {
  const std::string path = KeyFile(size);
  for (auto _ : state) {
    GKeyFile* const keys = LoadKeyFile(path);
    if (keys == nullptr) return state.SkipWithError("the settings were not loaded");
    g_key_file_free(keys);
  }
}

void KeyFileSave(benchmark::State& state, std::int64_t size) {
  GKeyFile* const keys = LoadKeyFile(KeyFile(size));
  if (keys == nullptr) return state.SkipWithError("the settings were not loaded");
  const std::string path = TemporaryFolder() + "/saved.key";
  for (auto _ : state) {
    if (!g_key_file_save_to_file(keys, path.c_str(), nullptr)) state.SkipWithError("the settings were not saved");
  }
  g_key_file_free(keys);
}

std::vector<std::string> Texts() {
  return LinesOf(DataFile("strings.txt"));
}

peers::Strings Message() {
  peers::Strings message;
  for (const std::string& text : Texts()) message.add_texts(text);
  return message;
}

// Straight from the texts into a body that is kept, tag and length before each.
void CodedStreamWrite(benchmark::State& state) {
  const std::vector<std::string> texts = Texts();
  std::string bytes;
  for (auto _ : state) {
    for (int i = 0; i < 1000; ++i) {
      bytes.clear();
      google::protobuf::io::StringOutputStream stream(&bytes);
      google::protobuf::io::CodedOutputStream coded(&stream);
      for (const std::string& text : texts) WireFormatLite::WriteBytes(peers::Strings::kTextsFieldNumber, text, &coded);
    }
    benchmark::DoNotOptimize(bytes.data());
  }
}

// The bytes of the library's own encoding, put down by a loop in a body that is kept.
void LoopWrite(benchmark::State& state) {
  const std::vector<std::string> texts = Texts();
  std::vector<char> bytes;
  for (auto _ : state) {
    for (int i = 0; i < 1000; ++i) {
      bytes.clear();
      for (const std::string& text : texts) {
        const auto length = static_cast<std::uint32_t>(text.size());
        const std::size_t start = bytes.size();
        bytes.resize(start + sizeof length + 2 * text.size());
        char* to = bytes.data() + start;
        std::memcpy(to, &length, sizeof length);
        to += sizeof length;
        for (const char character : text) {
          *to++ = character;
          *to++ = static_cast<signed char>(character) < 0 ? '\xFF' : '\0';
        }
      }
    }
    benchmark::DoNotOptimize(bytes.data());
  }
}

void ProtobufRead(benchmark::State& state) {
  const std::string bytes = Message().SerializeAsString();
  peers::Strings message;
  for (auto _ : state) {
    for (int i = 0; i < 1000; ++i) {
      if (!message.ParseFromString(bytes)) state.SkipWithError("a text is missing");
    }
  }
}

BENCHMARK(LoopWrite)->Name("write_string:loop")->Unit(benchmark::kMillisecond);
BENCHMARK(CodedStreamWrite)->Name("write_string:protobuf coded stream")->Unit(benchmark::kMillisecond);
BENCHMARK(ProtobufRead)->Name("read_string:protobuf")->Unit(benchmark::kMillisecond);

[[maybe_unused]] const bool registered = [] {
  RegisterSizes("catalogue_load", "catalogue", ".txt", &MapLoad, ":std::map");
  RegisterSizes("catalogue_lookup", "lookups", ".txt", &GettextLookup, ":gettext");
  RegisterSizes("settings_load", "settings", ".ini", &KeyFileLoad, ":GKeyFile");
  RegisterSizes("settings_save", "settings", ".ini", &KeyFileSave, ":GKeyFile");
  return true;
}();

}  // namespace
}  // namespace nvsupport::bench
