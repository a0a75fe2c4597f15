// nvcatalogue: helps translators to check, to complete and to convert a catalogue file.
#include <nvsupport/nvsupport.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <memory>
#include <sstream>

#include "catalogue_check.h"
#include "language/catalogue_reader.h"
#include "source_texts.h"
#include "work_file.h"

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

// Says where and why there is no new file.
int Refuse(const std::string& path, const Finding& reason) {
  std::cerr << path << ':' << reason.line << ": " << reason.message << '\n';
  return unusable;
}

int WriteNewFile(const std::string& path, const std::string& bytes) {
  std::FILE* const file = std::fopen(path.c_str(), "wbx");
  const bool written = file != nullptr && std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  if (file != nullptr && std::fclose(file) == 0 && written) return clean;
  std::perror(path.c_str());
  return unusable;
}

int WriteConverted(const std::string& path, const NewFile& made, const std::string& output) {
  const auto* const bytes = std::get_if<std::string>(&made);
  return bytes != nullptr ? WriteNewFile(output, *bytes) : Refuse(path, std::get<Finding>(made));
}

// In the place of the file, or of what a link leads to, which stays whole whatever happens meanwhile.
int UpdateFile(const std::string& path, std::string_view bytes) {
  const NewFile made = Update(bytes, SourceTexts());
  const auto* const updated = std::get_if<std::string>(&made);
  if (updated == nullptr) return Refuse(path, std::get<Finding>(made));
  const std::filesystem::path file = std::filesystem::weakly_canonical(path);
  const std::string beside = file.string() + ".new";
  std::filesystem::remove(beside);  // what a run that was killed has left
  if (WriteNewFile(beside, *updated) != clean) return unusable;
  std::filesystem::rename(beside, file);
  std::size_t toTranslate = 0, orphans = 0;
  std::istringstream lines(*updated);
  for (std::string line; std::getline(lines, line);) {
    orphans += line.starts_with(orphanMark);
    toTranslate += line.ends_with('\t' + std::string(placeholder));
  }
  std::cout << SourceTexts().size() << " texts, " << toTranslate << " to translate, " << orphans
            << " kept as orphans\n";
  return clean;
}

int Run(int argc, char** argv) {
  CLI::App app{"Checks, completes and converts translation catalogues of nvsupport.", "nvcatalogue"};
  app.footer("Exit code: 0 done and nothing found, 1 something found, 2 wrong usage or a file that cannot be used.");
  app.set_version_flag("--version", "nvcatalogue " NVSUPPORT_VERSION);
  app.require_subcommand(1);
  std::string path, output;
  CLI::App* const check = app.add_subcommand("check", "Report the lines that will not come out as they were meant");
  check->add_option("FILE", path, "Catalogue file")->required();
  CLI::App* const missing = app.add_subcommand("missing", "List the texts of the library that have no entry");
  missing->add_option("FILE", path, "Catalogue file")->required();
  CLI::App* const update = app.add_subcommand("update", "Bring a catalogue to today's texts, losing no translation");
  update->add_option("FILE", path, "Catalogue file in UTF-8; made if it is not there")->required();
  CLI::App* const toUtf8 = app.add_subcommand("to-utf8", "Make a UTF-8 work file of a 16-bit one");
  CLI::App* const toUtf16 = app.add_subcommand("to-utf16", "Make a 16-bit file for spreadsheets of a work file");
  for (CLI::App* const conversion : {toUtf8, toUtf16}) {
    conversion->add_option("IN", path, "File to read")->required();
    conversion->add_option("OUT", output, "File to make, which must not be there")->required();
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? clean : unusable;
  }

  const bool isNew = update->parsed() && !std::filesystem::exists(path);
  const std::optional<std::string> bytes = isNew ? std::string() : ReadCatalogueFile(path);
  if (!bytes) {
    std::cerr << "nvcatalogue: " << path << " cannot be read\n";
    return unusable;
  }
  if (check->parsed()) return PrintFindings(path, *bytes);
  if (missing->parsed()) return PrintMissingTexts(*bytes);
  if (update->parsed()) return UpdateFile(path, *bytes);
  return WriteConverted(path, toUtf8->parsed() ? ToUtf8(*bytes) : ToUtf16(*bytes), output);
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
