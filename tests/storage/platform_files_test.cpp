// The file operations of the platform as the library relies on them.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "platform/platform.h"
#include "support/temporary_home.h"

namespace {

using nvsupport::testing::ReadWholeFile;
using nvsupport::testing::TemporaryFolder;
using nvsupport::testing::WriteWholeFile;
namespace fs = std::filesystem;
using namespace std::string_literals;

HANDLE CreateForWriting(const std::string& path) {
  return CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

TEST(PlatformFiles, WhatIsNoFileIsNeitherOpenedNorWaitedFor) {
  const TemporaryFolder folder;
  const std::string name = folder.path.string();
  EXPECT_EQ(GetFileAttributesA((name + "\\").c_str()), FILE_ATTRIBUTE_DIRECTORY);
  EXPECT_EQ(GetFileAttributesA(""), INVALID_FILE_ATTRIBUTES);
  EXPECT_FALSE(DeleteFileA(name.c_str()));
  const std::string pipe = folder / "pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& path : {name, pipe, "/dev/zero"s}) {
    EXPECT_FALSE(platform::OpenFileStream(path.c_str(), "r")) << path;
  }
  for (const std::string& path : {name, pipe}) {
    EXPECT_FALSE(platform::OpenFileStream(path.c_str(), "w")) << path;
    EXPECT_EQ(CreateForWriting(path), INVALID_HANDLE_VALUE) << path;
  }
}

TEST(PlatformFiles, MovingNeverReplacesAFile) {
  const TemporaryFolder folder;
  WriteWholeFile(folder / "a", "new");
  WriteWholeFile(folder / "b", "old");
  EXPECT_FALSE(MoveFileA((folder / "a").c_str(), (folder / "b").c_str()));
  EXPECT_EQ(ReadWholeFile(folder / "b"), "old");
  EXPECT_TRUE(MoveFileA((folder / "a").c_str(), (folder / "c").c_str()));
  EXPECT_EQ(ReadWholeFile(folder / "c"), "new");
  EXPECT_FALSE(fs::exists(folder / "a"));
}

TEST(PlatformFiles, StreamsOpenedForWritingAreTheOwnersAlone) {
  const TemporaryFolder folder;
  WriteWholeFile(folder / "old", "text");
  fs::permissions(folder / "old", fs::perms(0644));
  for (const char* name : {"old", "new"}) {
    EXPECT_TRUE(platform::OpenFileStream((folder / name).c_str(), "w")) << name;
    EXPECT_EQ(fs::status(folder / name).permissions(), fs::perms(0600)) << name;
  }
}

TEST(PlatformFiles, PatternsMatchAsThePublishedInterfaceDoes) {
  const TemporaryFolder folder;
  for (const char* name : {"T1", "t2.tmp", "T3.a.b", "xT", ".hidden"}) WriteWholeFile(folder / name, "");
  const std::pair<const char*, std::vector<std::string>> cases[] = {
      {"T*.*", {"T1", "T3.a.b", "t2.tmp"}},
      {"*", {".", "..", ".hidden", "T1", "T3.a.b", "t2.tmp", "xT"}},
      {"*.*", {".", "..", ".hidden", "T1", "T3.a.b", "t2.tmp", "xT"}},
      {"t?.t*p", {"t2.tmp"}},
      {"*T", {"xT"}},
      {"*.b", {"T3.a.b"}},
      {"none*", {}}};
  for (const auto& [pattern, expected] : cases) {
    std::vector<std::string> names;
    WIN32_FIND_DATAA data{};
    const HANDLE find = FindFirstFileA((folder.path.string() + "\\" + pattern).c_str(), &data);
    if (find != INVALID_HANDLE_VALUE) {
      do names.emplace_back(data.cFileName);
      while (FindNextFileA(find, &data));
      FindClose(find);
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, expected) << pattern;
  }
  WIN32_FIND_DATAA data{};
  EXPECT_EQ(FindFirstFileA((folder / "missing\\*").c_str(), &data), INVALID_HANDLE_VALUE);
}

}  // namespace
