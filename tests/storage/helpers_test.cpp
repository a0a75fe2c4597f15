// Paths, folders, formatted text, temporary files.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <set>
#include <string>
#include <vector>

#include "storage/files.h"
#include "storage/format_text.h"
#include "support/temporary_home.h"

namespace nvsupport {
namespace {

using testing::TemporaryFolder;
using testing::TemporaryHome;
using testing::WriteWholeFile;
namespace fs = std::filesystem;

// Writes an empty file that was last written so many seconds after 1970.
void WriteAt(const fs::path& path, time_t seconds) {
  WriteWholeFile(path, "");
  const timespec times[2] = {{seconds, 0}, {seconds, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
}

std::set<std::string> NamesIn(const fs::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename());
  return names;
}

TEST(Paths, AreTakenApartAtEitherSeparatorAndTheDrive) {
  const struct {
    const char *path, *folder, *file, *base;
  } cases[] = {{"C:\\maps\\a.txt", "C:\\maps", "a.txt", "a"},
               {"a.txt", ".", "a.txt", "a"},
               {"a.b.txt", ".", "a.b.txt", "a.b"},
               {"C:a.txt", "C", "a.txt", "a"},
               {"\\a", "", "a", "a"},
               {"x.d\\a", "x.d", "a", "a"},
               {".cfg", ".", ".cfg", ""},
               {"maps\\", "maps", "", ""},
               {"/home/x\\maps/a.txt", "/home/x\\maps", "a.txt", "a"},
               {"", ".", "", ""}};
  for (const auto& each : cases) {
    EXPECT_EQ(GetFolderOf(each.path), each.folder) << each.path;
    EXPECT_EQ(GetFileNameOf(each.path), each.file) << each.path;
    EXPECT_EQ(GetBaseNameOf(each.path), each.base) << each.path;
  }
}

TEST(Folders, CreatePathMakesWhatIsMissing) {
  const TemporaryFolder folder;
  const std::string path = (folder / "b") + "\\c";
  for (int call = 0; call < 2; ++call) EXPECT_TRUE(CreatePath(path));
  EXPECT_TRUE(fs::is_directory(folder / "b/c"));
  EXPECT_EQ(fs::status(folder / "b").permissions(), fs::perms(0700));
  WriteWholeFile(folder / "file", "");
  EXPECT_FALSE(CreatePath(folder / "file"));
  EXPECT_FALSE(CreatePath(folder / "file\\below"));
  EXPECT_TRUE(CreatePath(""));
  std::string deep;
  for (int level = 0; level < 100'000; ++level) deep += "x/";
  EXPECT_FALSE(CreatePath(deep)) << "and no stack is exhausted";

  const fs::path before = fs::current_path();
  fs::current_path(folder.path);
  EXPECT_TRUE(CreatePath("rel\\below"));
  fs::current_path(before);
  EXPECT_TRUE(fs::is_directory(folder / "rel/below"));
}

TEST(Folders, SpecialFoldersAreMadeForTheUserAlone) {
  const TemporaryHome home;
  const std::string data = home.folder / "data";
  EXPECT_EQ(GetSpecialFolder(CSIDL_LOCAL_APPDATA), data);
  EXPECT_EQ(GetSpecialFolder(CSIDL_LOCAL_APPDATA, ""), data);
  EXPECT_EQ(GetSpecialFolder(CSIDL_LOCAL_APPDATA, "A b-Service"), data + "\\A b-Service");
  EXPECT_EQ(fs::status(home.folder / "data/A b-Service").permissions(), fs::perms(0700));
  EXPECT_EQ(GetSpecialFolder(CSIDL_PERSONAL), home.folder / "documents");
  EXPECT_EQ(GetSpecialFolder(0x7777, "x"), "");
  const testing::ScopedVariable tooLong("XDG_DATA_HOME", "/" + std::string(300, 'x'));
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

TEST(Folders, ListFilesAppendsFullNames) {
  const TemporaryFolder folder;
  const std::string name = folder.path.string();
  WriteWholeFile(folder / "a.map", "");
  std::vector<std::string> files = {"kept"};
  EXPECT_FALSE(ListFiles(folder / "missing", "*", files));
  EXPECT_FALSE(ListFiles(name, "*.txt", files));
  EXPECT_TRUE(ListFiles(name, "*.map", files));
  EXPECT_EQ(files, std::vector<std::string>({"kept", name + "\\a.map"}));
}

TEST(FormatText, CutsAfter999Characters) {
  const std::string argument = std::string(2000, 'x');
  EXPECT_EQ(FormatText("%s", argument.c_str()), std::string(999, 'x'));
  std::string target = "kept ";
  AppendFormatText(target, "%d %s", 7, "100%n%s");
  EXPECT_EQ(target, "kept 7 100%n%s");
}

TEST(TempFiles, TheFirstNameOfAProcessSweepsWhatEarlierOnesLeft) {
  const TemporaryHome home;
  const std::string folder = GetSpecialFolder(CSIDL_LOCAL_APPDATA, "Norvane\\Temp");
  const fs::path place = home.folder.path / "data/Norvane/Temp";
  for (const char* name : {"T1", "t2.dat", "kept"}) WriteAt(place / name, 1'000'000'000);
  WriteAt(place / "Tfuture", 32'000'000'000);
  EXPECT_EQ(MakeTempFileName(".dat"), folder + FormatText("\\T%X01.dat", GetCurrentProcessId()));
  EXPECT_EQ(NamesIn(place), std::set<std::string>({"Tfuture", "kept"}));

  WriteAt(place / "T3", 1'000'000'000);
  EXPECT_EQ(MakeTempFileName(""), folder + FormatText("\\T%X02", GetCurrentProcessId()));
  EXPECT_TRUE(fs::exists(place / "T3"));
}

TEST(TempFiles, ASweepLeavesFilesOfTheStampItself) {
  const TemporaryFolder folder;
  const SYSTEMTIME known{2001, 9, 0, 9, 1, 46, 40, 0};
  FILETIME stamp{};
  ASSERT_TRUE(SystemTimeToFileTime(&known, &stamp));
  WriteAt(folder / "Told", 999'999'999);
  WriteAt(folder / "Tsame", 1'000'000'000);
  WriteAt(folder / "Tnew", 1'000'000'001);
  SweepOldTempFiles(folder.path.string(), "T*.*", stamp);
  EXPECT_EQ(NamesIn(folder.path), std::set<std::string>({"Tnew", "Tsame"}));
}

}  // namespace
}  // namespace nvsupport
