// nvcatalogue: helps translators to check, complete, see and convert a catalogue file.
#include <nvsupport/nvsupport.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "catalogue_check.h"
#include "language/catalogue_reader.h"
#include "source_texts.h"
#include "work_file.h"

namespace nvsupport {
namespace {

enum ExitCode { clean = 0, findings = 1, unusable = 2, notWritten = 3 };

// Why a command ended without having done its work.
struct Failure : std::runtime_error {
  Failure(ExitCode exitCode, const std::string& reason) : std::runtime_error(reason), code(exitCode) {}
  ExitCode code;
};

constexpr std::string_view standardStream = "-";  // as the name of a file: standard input or output

std::optional<std::string> ReadCatalogueFile(const std::string& path) {
  if (path == standardStream) return ReadCatalogueBytes(stdin);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
  return file ? ReadCatalogueBytes(file.get()) : std::nullopt;
}

int PrintFindings(const std::string& path, std::string_view bytes) {
  const std::vector<Finding> found = CheckCatalogue(bytes);
  for (const Finding& finding : found) std::cout << path << ':' << finding.line << ": " << finding.message << '\n';
  return found.empty() ? clean : findings;
}

// Prints the texts as lines of a catalogue, to be appended to the file and translated there.
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

// A file that cannot be written whole is removed.
void WriteNewFile(const std::string& path, const std::string& bytes) {
  if (path == standardStream) {
    std::cout << bytes;
    return;
  }
  std::FILE* const file = std::fopen(path.c_str(), "wbx");
  if (file == nullptr) throw Failure(unusable, path + ": " + std::strerror(errno));
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
  if (std::fclose(file) == 0 && written) return;
  const std::string reason = std::strerror(errno);
  std::remove(path.c_str());
  throw Failure(notWritten, path + " cannot be written: " + reason);
}

int WriteConverted(const std::string& path, const NewFile& made, const std::string& output) {
  const auto* const bytes = std::get_if<std::string>(&made);
  if (bytes == nullptr) return Refuse(path, std::get<Finding>(made));
  WriteNewFile(output, *bytes);
  return clean;
}

// Replaces the file, or the one that a link leads to. Whatever happens, either the old or the new one is there, whole.
void Replace(const std::string& path, const std::string& bytes) {
  namespace fs = std::filesystem;
  const fs::path file = fs::weakly_canonical(path);
  const std::string beside = file.string() + ".new";
  fs::remove(beside);  // left by a run that was killed
  WriteNewFile(beside, bytes);
  if (fs::exists(file)) fs::permissions(beside, fs::status(file).permissions());
  fs::rename(beside, file);
}

int UpdateFile(const std::string& path, std::string_view bytes) {
  const NewFile made = Update(bytes, SourceTexts());
  const auto* const updated = std::get_if<std::string>(&made);
  if (updated == nullptr) return Refuse(path, std::get<Finding>(made));
  const bool isStream = path == standardStream;
  if (isStream) {
    WriteNewFile(path, *updated);
  } else {
    Replace(path, *updated);
  }
  std::size_t toTranslate = 0, orphans = 0;
  std::istringstream lines(*updated);
  for (std::string line; std::getline(lines, line);) {
    orphans += line.starts_with(orphanMark);
    toTranslate += line.ends_with('\t' + std::string(placeholder));
  }
  (isStream ? std::cerr : std::cout) << SourceTexts().size() << " texts, " << toTranslate << " to translate, "
                                     << orphans << " kept as orphans\n";
  return clean;
}

// Becomes the program that shows the windows, which alone needs a toolkit.
[[noreturn]] void Preview(const std::string& path, const std::string& window, const std::string& folder) {
  const std::string program = std::filesystem::read_symlink("/proc/self/exe").replace_filename("nvcatalogue-preview");
  const std::string file = path == standardStream ? "/dev/stdin" : path;
  execl(program.c_str(), "nvcatalogue preview", file.c_str(), window.c_str(), folder.c_str(), nullptr);
  throw Failure(unusable, "cannot start " + program + ": " + std::strerror(errno));
}

std::string WhatIsWrong(const CLI::App* app, const CLI::Error& error) {
  const std::vector<std::string> unknown = app->remaining();
  std::string reason = error.what();
  // CLI11 does not name a word that stands where a command should.
  if (app->get_subcommands().empty() && !unknown.empty()) {
    reason = (unknown[0].starts_with('-') ? "there is no option " : "there is no command ") + unknown[0];
  }
  return "nvcatalogue: " + reason + " (see nvcatalogue --help)\n";
}

int Run(int argc, char** argv) {
  CLI::App app{"Checks, completes, shows and converts translation catalogues of nvsupport.", "nvcatalogue"};
  app.failure_message(&WhatIsWrong);
  app.set_version_flag("--version", "nvcatalogue " NVSUPPORT_VERSION);
  app.require_subcommand(1);
  const std::vector<std::string> windowNames = {"sign-in", "create-account", "computer-name", "messages"};
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
  CLI::App* const preview =
      app.add_subcommand("preview", "Show the dialogs and messages, texts that do not fit in red");
  preview->add_option("FILE", path, "Catalogue file")->required();
  std::string window, folder;
  preview->add_option("WINDOW", window, "One of them alone")->check(CLI::IsMember(windowNames));
  preview->add_option("--png", folder, "Show nothing and write pictures")->type_name("FOLDER");
  app.footer(
      "A file called - is standard input, or standard output.\n"
      "Exit code: 0 done and nothing found, 1 something found, 2 wrong usage or a file that cannot be used,\n"
      "3 a file or standard output cannot be written.");
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? clean : unusable;
  }

  if (preview->parsed()) Preview(path, window, folder);
  const bool isNew = update->parsed() && path != standardStream && !std::filesystem::exists(path);
  const std::optional<std::string> bytes = isNew ? std::string() : ReadCatalogueFile(path);
  if (!bytes) throw Failure(unusable, path + " cannot be read");
  if (check->parsed()) return PrintFindings(path, *bytes);
  if (missing->parsed()) return PrintMissingTexts(*bytes);
  if (update->parsed()) return UpdateFile(path, *bytes);
  return WriteConverted(path, toUtf8->parsed() ? ToUtf8(*bytes) : ToUtf16(*bytes), output);
}

int RunAndFlush(int argc, char** argv) {
  const int exitCode = Run(argc, argv);
  std::cout.flush();
  if (!std::cout || std::fflush(stdout) != 0) throw Failure(notWritten, "standard output cannot be written");
  return exitCode;
}

}  // namespace
}  // namespace nvsupport

int main(int argc, char** argv) {
  try {
    return nvsupport::RunAndFlush(argc, argv);
  } catch (const nvsupport::Failure& failure) {
    std::fprintf(stderr, "nvcatalogue: %s\n", failure.what());
    return failure.code;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "nvcatalogue: %s\n", error.what());
    return nvsupport::unusable;
  }
}
