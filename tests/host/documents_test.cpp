// The documents keep up with the tree. Their commands are run as a reader runs them: a block that is marked as a
// console holds commands behind "$ " and what they print, where "..." stands for any lines; without any output shown,
// only the exit code counts. A block in C with a file name is that file for the commands below it. One shell runs all
// blocks of a document, in a folder that looks like the tree with a finished build.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "service/local_service.h"
#include "support/run_program.h"

namespace nvsupport::testing {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

struct Command {
  std::string text;
  Lines output;
};

struct Commands {
  std::vector<Command> all;
  std::string script;  // the commands and the files among them
};

constexpr char mark = '\001';  // in front of the exit code behind each command's output

Lines SplitLines(std::istream&& text) {
  Lines lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

Commands ReadCommands(const fs::path& document) {
  Commands commands;
  bool inConsole = false;
  bool inFile = false;
  for (const std::string& line : SplitLines(std::ifstream(document))) {
    const bool fence = line.starts_with("```");
    if (fence && inFile) commands.script += "END_OF_FILE\n";
    if (fence) {
      inFile = line.starts_with("```c ");
      inConsole = line == "```console";
      if (inFile) commands.script += "cat >" + line.substr(5) + " <<'END_OF_FILE'\n";
    } else if (inFile) {
      commands.script += line + "\n";
    } else if (inConsole && line.starts_with("$ ")) {
      commands.all.push_back({line.substr(2), {}});
      commands.script += line.substr(2) + "\nprintf '\\001%d\\n' $?\n";
    } else if (inConsole) {
      commands.all.back().output.push_back(line);
    }
  }
  return commands;
}

bool Matches(Lines::const_iterator shown, Lines::const_iterator shownEnd, Lines::const_iterator printed,
             Lines::const_iterator printedEnd) {
  if (shown == shownEnd) return printed == printedEnd;
  if (*shown == "...") {
    return Matches(shown + 1, shownEnd, printed, printedEnd) ||
           (printed != printedEnd && Matches(shown, shownEnd, printed + 1, printedEnd));
  }
  return printed != printedEnd && *shown == *printed && Matches(shown + 1, shownEnd, printed + 1, printedEnd);
}

// The tree's folders, and the build under the name that documents give it.
void MakeTree(const fs::path& folder) {
  for (const auto& entry : fs::directory_iterator(NV_SOURCE_FOLDER)) {
    if (entry.path().filename() != "build") fs::create_symlink(entry.path(), folder / entry.path().filename());
  }
  fs::create_directory(folder / "build");
  fs::create_directory_symlink(NV_BUILD_FOLDER, folder / "build/release");
}

void ExpectCommandsWork(const fs::path& document) {
  const Commands commands = ReadCommands(document);
  EXPECT_FALSE(commands.all.empty()) << "no command is found in " << document;
  const TemporaryHome home;
  MakeTree(home.folder.path);
  const std::string script = home.folder / "script";
  WriteWholeFile(script, "exec 2>&1\ncd '" + home.folder.path.string() + "'\nPATH=build/release:$PATH\n" +
                             NV_PRELOADED + commands.script);
  std::istringstream printed(RunProgram({"bash", script}).output);
  for (const Command& command : commands.all) {
    std::string output;
    std::string exitCode;
    std::getline(printed, output, mark);
    std::getline(printed, exitCode);
    const std::string what = document.string() + ": " + command.text + "\n" + output;
    EXPECT_EQ(exitCode, "0") << what;
    const Lines lines = SplitLines(std::istringstream(output));
    const bool matches = Matches(command.output.begin(), command.output.end(), lines.begin(), lines.end());
    EXPECT_TRUE(command.output.empty() || matches) << what;
  }
}

TEST(Documents, CommandsDoWhatTheyShow) {
  const LocalService service;
  for (const char* document : {"/README.md", "/docs/host_guide.md"}) {
    ExpectCommandsWork(NV_SOURCE_FOLDER + std::string(document));
  }
  const std::string minimal = ReadWholeFile(NV_SOURCE_FOLDER "/examples/minimal/minimal.c");
  EXPECT_NE(ReadWholeFile(NV_SOURCE_FOLDER "/README.md").find("```c\n" + minimal + "```\n"), std::string::npos);
}

TEST(Documents, NameFilesThatAreThere) {
  std::string files;
  for (const char* folder : {"/src", "/tests"}) {
    for (const auto& entry : fs::recursive_directory_iterator(NV_SOURCE_FOLDER + std::string(folder))) {
      files += entry.path().string() + "\n";
    }
  }
  const std::string page = ReadWholeFile(NV_SOURCE_FOLDER "/docs/architecture.md");
  const std::regex fileName("`([a-z_/]+\\.(cpp|h|rc|sh))`");
  for (std::sregex_iterator name(page.begin(), page.end(), fileName); name != std::sregex_iterator(); ++name) {
    EXPECT_NE(files.find("/" + name->str(1) + "\n"), std::string::npos) << name->str(1);
  }
}

}  // namespace
}  // namespace nvsupport::testing
