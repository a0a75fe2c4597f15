// The documents keep up with the tree. Their commands are run as a reader runs them: a block that is marked as a
// console holds commands behind "$ " and what they print; a block in C with a file name is that file for the commands
// below it. One shell runs all blocks of a document, in a folder that looks like the tree with a finished build.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "service/local_service.h"
#include "support/run_program.h"

namespace nvsupport::testing {
namespace {

namespace fs = std::filesystem;

// The tree's folders, and the build under the name that documents give it.
void MakeTree(const fs::path& folder) {
  for (const auto& entry : fs::directory_iterator(NV_SOURCE_FOLDER)) {
    if (entry.path().filename() != "build") fs::create_symlink(entry.path(), folder / entry.path().filename());
  }
  fs::create_directory(folder / "build");
  fs::create_directory_symlink(NV_BUILD_FOLDER, folder / "build/release");
}

void ExpectCommandsWork(const std::string& document) {
  const TemporaryHome home;
  MakeTree(home.folder.path);
  std::string shown;
  std::string script = "exec 2>&1\ncd '" + home.folder.path.string() + "'\nPATH=build/release:$PATH\n" NV_PRELOADED;
  std::ifstream text(NV_SOURCE_FOLDER + document);
  std::string block;
  for (std::string line; std::getline(text, line);) {
    if (line.starts_with("```")) {
      if (block.starts_with("```c ")) script += "END_OF_TEXT\n";
      block = line;
      if (block.starts_with("```c ")) script += "cat >" + block.substr(5) + " <<'END_OF_TEXT'\n";
    } else if (block.starts_with("```c ")) {
      script += line + "\n";
    } else if (block == "```console") {
      shown += line + "\n";
      if (line.starts_with("$ "))
        script += "cat <<'END_OF_TEXT'\n" + line + "\nEND_OF_TEXT\n" + line.substr(2) + " || echo failed\n";
    }
  }
  WriteWholeFile(home.folder / "script", script);
  EXPECT_NE(shown, "") << "no command is found in " << document;
  EXPECT_EQ(RunProgram({"bash", home.folder / "script"}).output, shown) << document;
}

TEST(Documents, ShowWhatTheirCommandsPrint) {
  const LocalService service;
  for (const char* document : {"/README.md", "/docs/host_guide.md", "/docs/translating.md"})
    ExpectCommandsWork(document);
  const std::string minimal = ReadWholeFile(NV_SOURCE_FOLDER "/examples/minimal/minimal.c");
  EXPECT_NE(ReadWholeFile(NV_SOURCE_FOLDER "/README.md").find("```c\n" + minimal + "```\n"), std::string::npos);
}

}  // namespace
}  // namespace nvsupport::testing
