// nvcatalogue: helps translators to check and to complete a catalogue file.
#include <nvsupport/nvsupport.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>
#include <memory>

#include "catalogue_check.h"
#include "language/catalogue_reader.h"
#include "source_texts.h"

namespace nvsupport {
namespace {

enum ExitCode { clean = 0, findings = 1, unusable = 2 };

std::optional<std::string> ReadCatalogueFile(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
  return file ? ReadCatalogueBytes(file.get()) : std::nullopt;
}

int PrintFindings(const std::string& path, std::string_view bytes) {
  const std::vector<Finding> found = CheckCatalogue(bytes);
  for (const Finding& finding : found) std::cout << path << ':' << finding.line << ": " << finding.message << '\n';
  return found.empty() ? clean : findings;
}

// As lines of a catalogue, to be appended to the file and translated there.
int PrintMissingTexts(std::string_view bytes) {
  const std::vector<std::string_view> missing = FindMissingTexts(bytes, SourceTexts());
  for (const std::string_view text : missing) std::cout << EscapeCatalogueText(text) << "\tXXXX\n";
  return missing.empty() ? clean : findings;
}

int Run(int argc, char** argv) {
  CLI::App app{"Checks translation catalogues of nvsupport.", "nvcatalogue"};
  app.footer("Exit code: 0 nothing found, 1 something found, 2 wrong usage or an unreadable file.");
  app.set_version_flag("--version", "nvcatalogue " NVSUPPORT_VERSION);
  app.require_subcommand(1);
  std::string path;
  CLI::App* const check = app.add_subcommand("check", "Report the lines that will not come out as they were meant");
  check->add_option("FILE", path, "Catalogue file")->required();
  CLI::App* const missing = app.add_subcommand("missing", "List the texts of the library that have no entry");
  missing->add_option("FILE", path, "Catalogue file")->required();
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? clean : unusable;
  }

  const std::optional<std::string> bytes = ReadCatalogueFile(path);
  if (!bytes) {
    std::cerr << "nvcatalogue: " << path << " cannot be read\n";
    return unusable;
  }
  return check->parsed() ? PrintFindings(path, *bytes) : PrintMissingTexts(*bytes);
}

}  // namespace
}  // namespace nvsupport

int main(int argc, char** argv) {
  try {
    return nvsupport::Run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "nvcatalogue: %s\n", error.what());
    return nvsupport::unusable;
  }
}
