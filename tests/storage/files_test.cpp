// Paths, folders, formatted text, temporary files, and the file operations of the platform as the library relies on
// them.
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "files/xdg_folders.h"
#include "storage/files.h"
#include "storage/format_text.h"
#include "support/temporary_home.h"

// A system of the test's own, where others are rare: without an entry of the user, and a file system that cannot rename
// without writing over.
static bool isUserKnown = true;

extern "C" int getpwuid_r(uid_t user, passwd* entry, char*, std::size_t, passwd** found) {
  const passwd* const known = isUserKnown ? getpwuid(user) : nullptr;
  if (known != nullptr) *entry = *known;
  *found = known != nullptr ? entry : nullptr;
  return 0;
}
extern "C" int renameat2(int, const char*, int, const char*, unsigned) noexcept {
  static int error = EINVAL;
  errno = error = EINVAL + ENOSYS - error;  // each in turn
  return -1;
}

namespace nvsupport {
namespace {

using testing::TemporaryFolder;
using testing::TemporaryHome;
using testing::WriteWholeFile;
namespace fs = std::filesystem;

TEST(Paths, AreTakenApartAtEitherSeparatorAndTheDrive) {
  const struct {
    const char *path, *folder, *file, *base;
  } cases[] = {{"C:\\maps\\a.txt", "C:\\maps", "a.txt", "a"},
               {"C:a.b.txt", "C", "a.b.txt", "a.b"},
               {"x.d\\a", "x.d", "a", "a"},
               {"/home/x\\maps/", "/home/x\\maps", "", ""},
               {"a", ".", "a", "a"}};
  for (const auto& each : cases) {
    EXPECT_EQ(GetFolderOf(each.path), each.folder) << each.path;
    EXPECT_EQ(GetFileNameOf(each.path), each.file) << each.path;
    EXPECT_EQ(GetBaseNameOf(each.path), each.base) << each.path;
  }
}

TEST(Folders, AreMadeWithWhatIsMissingForTheUserAlone) {
  const TemporaryHome home;
  const std::string data = home.folder / "data";
  EXPECT_EQ(GetSpecialFolder(CSIDL_LOCAL_APPDATA, "A: b\\c"), data + "\\A: b\\c");
  for (const char* made : {"", "/A: b", "/A: b/c"}) {
    EXPECT_EQ(fs::status(data + made).permissions(), fs::perms(0700)) << made;
  }
  EXPECT_FALSE(fs::exists(data + "/A")) << "a colon is a part of a name";
  const std::string parent = home.folder / std::string(150, 'x') + "/";
  const testing::ScopedVariable tooLong("XDG_DATA_HOME", parent + std::string(MAX_PATH - parent.size(), 'x'));
  EXPECT_EQ(GetSpecialFolder(CSIDL_LOCAL_APPDATA, "x"), "");
}

TEST(Folders, AreThoseOfTheUserDatabaseWithoutHome) {
  for (const char* home : {"", "relative"}) {
    const testing::ScopedVariable homes[] = {{"HOME", home}, {"XDG_DATA_HOME", ""}};
    EXPECT_EQ(platform::DataHome(), std::string(getpwuid(getuid())->pw_dir) + "/.local/share");
    isUserKnown = false;
    EXPECT_EQ(platform::DataHome(), "") << "and none without an entry there";
    isUserKnown = true;
  }
}

TEST(Folders, DocumentsAreWhereTheDesktopSettingsSay) {
  const TemporaryHome home;
  const testing::ScopedVariable noVariable("XDG_DOCUMENTS_DIR", "");
  EXPECT_EQ(GetSpecialFolder(CSIDL_PERSONAL), "");
  EXPECT_TRUE(fs::is_empty(home.folder.path)) << "it is looked for, not made";
  for (const char* folder : {"Documents", "My \"Texts\""}) fs::create_directory(home.folder / folder);
  const std::pair<const char*, std::string> cases[] = {
      {"", home.folder / "Documents"},
      {"# XDG_DOCUMENTS_DIR=\"/no\"\nXDG_DOCUMENTS_DIR=\"$HOME/My \\\"Texts\\\"/\"\n", home.folder / "My \"Texts\""},
      {"XDG_DOWNLOAD_DIR=\"$HOME/no\"\n  XDG_DOCUMENTS_DIR=\"$HOME/\"\r\n", home.folder.path.string()},
      {"XDG_DOCUMENTS_DIR=\"$HOME/Documents\\", home.folder / "Documents\\"},
      {"XDG_DOCUMENTS_DIR=\"relative\"\nXDG_DOCUMENTS_DIR=$HOME/bare\n", home.folder / "Documents"},
  };
  for (const auto& [text, folder] : cases) {
    WriteWholeFile(home.folder / "config/user-dirs.dirs", text);
    EXPECT_EQ(GetSpecialFolder(CSIDL_PERSONAL), folder) << text;
  }
}

TEST(FormatText, IsAppendedAndCutAfter999Characters) {
  std::string target = "kept ";
  AppendFormatText(target, "%d %s", 7, std::string(2000, 'x').c_str());
  EXPECT_EQ(target, "kept 7 " + std::string(997, 'x'));
}

TEST(TempFiles, TheFirstNameOfAProcessSweepsWhatEarlierOnesLeft) {
  const TemporaryHome home;
  const std::string folder = GetSpecialFolder(CSIDL_LOCAL_APPDATA, "Norvane\\Temp");
  const std::string place = home.folder / "data/Norvane/Temp/";
  const auto now = fs::file_time_type::clock::now();
  for (const auto& [name, hours] : {std::pair("T1", -1), {"t2.dat", -1}, {"kept", -1}, {"Tfuture", 1}}) {
    WriteWholeFile(place + name, "");
    fs::last_write_time(place + name, now + std::chrono::hours(hours));
  }
  EXPECT_EQ(MakeTempFileName(".dat"), folder + FormatText("\\T%X01.dat", GetCurrentProcessId()));
  std::vector<std::string> left = {"before"};
  EXPECT_TRUE(ListFiles(folder, "t*.*", left));
  EXPECT_TRUE(ListFiles(folder, "?FUT*e", left));
  EXPECT_FALSE(ListFiles(folder, "none*", left));
  EXPECT_FALSE(ListFiles(folder + "\\none", "*", left));
  EXPECT_EQ(left, std::vector<std::string>({"before", folder + "\\Tfuture", folder + "\\Tfuture"}));
  EXPECT_TRUE(fs::exists(place + "kept"));
  fs::last_write_time(place + "Tfuture", now - std::chrono::hours(1));
  EXPECT_EQ(MakeTempFileName(""), folder + FormatText("\\T%X02", GetCurrentProcessId()));
  EXPECT_TRUE(fs::exists(place + "Tfuture")) << "only the first";
}

TEST(PlatformFiles, StreamsAreOpenedOfFilesAloneAndThoseForWritingAreTheOwners) {
  const TemporaryFolder folder;
  const std::string pipe = folder / "pipe";
  EXPECT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const std::pair<std::string, const char*> cases[] = {
      {folder / "", "r"}, {folder / "", "w"}, {pipe, "r"}, {pipe, "w"}, {"/dev/zero", "r"}};
  for (const auto& [path, mode] : cases) {
    EXPECT_FALSE(platform::OpenFileStream(path.c_str(), mode)) << path << ' ' << mode;
  }
  EXPECT_FALSE(DeleteFileA(nullptr));
  const auto create = [&] {
    return CreateFileA((folder / "old").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  };
  CloseHandle(create());
  EXPECT_EQ(create(), INVALID_HANDLE_VALUE) << "until the thread has renamed what it wrote";
  EXPECT_TRUE(MoveFileA((folder / "old").c_str(), (folder / "moved").c_str()));
  EXPECT_FALSE(MoveFileA((folder / "moved").c_str(), (folder / "moved").c_str())) << "nothing is written over";
  EXPECT_TRUE(MoveFileA((folder / "moved").c_str(), (folder / "old").c_str()));
  fs::permissions(folder / "old", fs::perms(0644));
  EXPECT_TRUE(platform::OpenFileStream((folder / "old").c_str(), "w"));
  EXPECT_EQ(fs::status(folder / "old").permissions(), fs::perms(0600));
}

}  // namespace
}  // namespace nvsupport
