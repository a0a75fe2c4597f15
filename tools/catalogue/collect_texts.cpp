// Collects the English texts that the library shows through the catalogue, when it is built, so that none is forgotten:
// those of the dialog templates; and of the sources each literal in a call that shows or translates a text, and in the
// folders whose texts go through tables each one that holds a blank, which sets texts for the user apart from names.
//
// collect_texts OUTPUT SOURCE-FOLDER: writes the texts as C++ literals, each with a comma behind it.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

#include "language/catalogue_reader.h"

namespace nvsupport {
namespace {

namespace fs = std::filesystem;

std::string ReadFile(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

class Collector {
 public:
  void CollectTemplates(const std::string& script) {
    Collect(script, "\\n *(?:CAPTION|[A-Z]*TEXT|[A-Z]*BUTTON|[A-Z]*BOX|CONTROL) +\"((?:[^\"\\n]|\"\")+)\"");
  }

  void CollectSource(const fs::path& path) {
    const std::string source = std::regex_replace(ReadFile(path), std::regex("\"\\s*\\n\\s*\""), "");
    const std::string literal = "\"((?:[^\"\\\\\\n]|\\\\.)+)\"";
    Collect(source, "(?:Translate|ShowMessage[A-Za-z]*)\\([^;\"]*" + literal);
    const std::string folder = path.parent_path().filename();
    if (folder != "account" && folder != "core") return;
    Collect(source, literal, [](const std::string& text) { return text.find(' ') != std::string::npos; });
  }

  std::vector<std::string> texts;

 private:
  // The first group of each match, as the program has it.
  void Collect(
      const std::string& source, const std::string& pattern,
      bool (*isWanted)(const std::string&) = [](const std::string&) { return true; }) {
    const std::regex expression(pattern);
    for (std::sregex_iterator found(source.begin(), source.end(), expression), end; found != end; ++found) {
      const std::string text = UnescapeCatalogueText((*found)[1].str());
      if (isWanted(text) && std::ranges::find(texts, text) == texts.end()) texts.push_back(text);
    }
  }
};

int Run(const char* output, const fs::path& sources) {
  Collector collector;
  collector.CollectTemplates(ReadFile(sources / "resources/nvsupport.rc"));
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(sources)) {
    if (entry.path().extension() == ".cpp") files.push_back(entry.path());
  }
  std::ranges::sort(files);
  for (const fs::path& file : files) collector.CollectSource(file);
  std::ofstream stream(output, std::ios::binary);
  for (const std::string& text : collector.texts) stream << "R\"text(" << text << ")text\",\n";
  return collector.texts.empty() || !stream.flush() ? 1 : 0;
}

}  // namespace
}  // namespace nvsupport

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  try {
    return nvsupport::Run(argv[1], argv[2]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "collect_texts: %s\n", error.what());
    return 1;
  }
}
