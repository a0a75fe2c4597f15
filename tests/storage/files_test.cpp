// Paths, folders, formatted text, temporary files, and the file operations of the platform as the library relies on
// them.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "storage/files.h"
#include "storage/format_text.h"
#include "support/temporary_home.h"

namespace nvsupport {
namespace {

using namespace std::string_literals;
using testing::TemporaryFolder;
using testing::TemporaryHome;
using testing::WriteWholeFile;
namespace fs = std::filesystem;

TEST(Paths, AreTakenApartAtEitherSeparatorAndTheDrive) {
  const struct {
    const char *path, *folder, *file, *base;
  } cases[] = {{"C:\\maps\\a.txt", "C:\\maps", "a.txt", "a"},
               {"a.b.txt", ".", "a.b.txt", "a.b"},
               {"\\a", "", "a", "a"},
               {"x.d\\a", "x.d", "a", "a"},
               {"maps\\", "maps", "", ""},
               {"/home/x\\maps/a.txt", "/home/x\\maps", "a.txt", "a"},
               {"", ".", "", ""}};
  for (const auto& each : cases) {
    EXPECT_EQ(GetFolderOf(each.path), each.folder) << each.path;
    EXPECT_EQ(GetFileNameOf(each.path), each.file) << each.path;
    EXPECT_EQ(GetBaseNameOf(each.path), each.base) << each.path;
  }
}

TEST(Folders, AreMadeWithWhatIsMissingForTheUserAlone) {
  const TemporaryHome home;
  const std::string data = home.folder / "data";
  for (int call = 0; call < 2; ++call) {
    EXPECT_EQ(GetSpecialFolder(CSIDL_LOCAL_APPDATA, "A b\\c"), data + "\\A b\\c");
  }
  for (const char* made : {"", "/A b", "/A b/c"}) {
    EXPECT_EQ(fs::status(data + made).permissions(), fs::perms(0700)) << made;
  }
  WriteWholeFile(home.folder / "file", "");
  EXPECT_FALSE(CreatePath(home.folder / "file"));
  EXPECT_FALSE(CreatePath(home.folder / "file\\below"));
  std::string deep;
  for (int level = 0; level < 100'000; ++level) deep += "x/";
  EXPECT_FALSE(CreatePath(deep)) << "and no stack is exhausted";
  EXPECT_EQ(GetSpecialFolder(CSIDL_PERSONAL), home.folder / "documents");
  EXPECT_EQ(GetSpecialFolder(0x7777, "x"), "");
  const std::string parent = home.folder / std::string(150, 'x') + "/";
  const testing::ScopedVariable tooLong("XDG_DATA_HOME", parent + std::string(MAX_PATH - parent.size(), 'x'));
  EXPECT_EQ(GetSpecialFolder(CSIDL_LOCAL_APPDATA, "x"), "");
}

TEST(Folders, DocumentsAreWhereTheDesktopSettingsSay) {
  const TemporaryHome home;
  const testing::ScopedVariable noVariable("XDG_DOCUMENTS_DIR", "");
  EXPECT_EQ(GetSpecialFolder(CSIDL_PERSONAL), home.folder / "Documents");
  const std::pair<const char*, std::string> cases[] = {
      {"# XDG_DOCUMENTS_DIR=\"/no\"\nXDG_DOCUMENTS_DIR=\"$HOME/My \\\"Texts\\\"/\"\n", home.folder / "My \"Texts\""},
      {"XDG_DOWNLOAD_DIR=\"$HOME/no\"\n  XDG_DOCUMENTS_DIR=\"$HOME/\"\r\n", home.folder.path.string()},
      {"XDG_DOCUMENTS_DIR=\"relative\"\nXDG_DOCUMENTS_DIR=$HOME/bare\n", home.folder / "Documents"},
  };
  for (const auto& [text, folder] : cases) {
    WriteWholeFile(home.folder / "config/user-dirs.dirs", text);
    EXPECT_EQ(GetSpecialFolder(CSIDL_PERSONAL), folder) << text;
  }
}

TEST(FormatText, CutsAfter999Characters) {
  std::string target = "kept ";
  AppendFormatText(target, "%d %s", 7, "100%n%s");
  EXPECT_EQ(target, "kept 7 100%n%s");
  EXPECT_EQ(FormatText("%s", std::string(2000, 'x').c_str()), std::string(999, 'x'));
}

TEST(TempFiles, TheFirstNameOfAProcessSweepsWhatEarlierOnesLeft) {
  const TemporaryHome home;
  const std::string folder = GetSpecialFolder(CSIDL_LOCAL_APPDATA, "Norvane\\Temp");
  const std::string place = home.folder / "data/Norvane/Temp/";
  const auto left = [&] {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(place)) names.insert(entry.path().filename());
    return names;
  };
  const auto now = fs::file_time_type::clock::now();
  for (const auto& [name, hours] : {std::pair("T1", -1), {"t2.dat", -1}, {"kept", -1}, {"Tfuture", 1}}) {
    WriteWholeFile(place + name, "");
    fs::last_write_time(place + name, now + std::chrono::hours(hours));
  }
  EXPECT_EQ(MakeTempFileName(".dat"), folder + FormatText("\\T%X01.dat", GetCurrentProcessId()));
  EXPECT_EQ(left(), std::set<std::string>({"Tfuture", "kept"}));
  fs::last_write_time(place + "Tfuture", now - std::chrono::hours(1));
  EXPECT_EQ(MakeTempFileName(""), folder + FormatText("\\T%X02", GetCurrentProcessId()));
  EXPECT_TRUE(left().contains("Tfuture"));
}

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
  const std::string prefix = folder.path.string() + "\\";
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
    std::vector<std::string> names = {"kept"};
    EXPECT_EQ(ListFiles(folder.path.string(), pattern, names), !expected.empty()) << pattern;
    std::sort(names.begin() + 1, names.end());
    std::vector<std::string> full = {"kept"};
    for (const std::string& name : expected) full.push_back(prefix + name);
    EXPECT_EQ(names, full) << pattern;
  }
  std::vector<std::string> none;
  EXPECT_FALSE(ListFiles(folder / "missing", "*", none));
}

}  // namespace
}  // namespace nvsupport
