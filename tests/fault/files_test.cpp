// Odd files: what lies in the place of a file that the library writes, who else has it, and what the system refuses.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "core/service_manager.h"
#include "language/translation_catalogue.h"
#include "nvsupport/nvsupport.h"
#include "storage/settings_file.h"
#include "support/scripted_server.h"
#include "support/temporary_home.h"

namespace nvsupport {
namespace {

using namespace testing;
namespace fs = std::filesystem;

TEST(OddFiles, OfTwoDownloadsToOneFileTheFirstCounts) {
  const TemporaryFolder folder;
  const ScriptedServer first(HttpReply(200, std::string(100'000, 'a')), "a.example");
  const ScriptedServer second(HttpReply(200, std::string(200'000, 'b')), "b.example");
  const std::string file = folder / "map";
  const auto another = [](void* data) {
    const auto& name = *static_cast<const std::string*>(data);
    EXPECT_FALSE(MoveFileA((name + ".TMP").c_str(), (name + "2").c_str()));
    EXPECT_FALSE(DeleteFileA((name + ".TMP").c_str()));
    return !x77fc64c7("b.example", "/", name.c_str(), nullptr, nullptr);
  };
  EXPECT_TRUE(x77fc64c7("a.example", "/", file.c_str(), another, const_cast<std::string*>(&file)));
  EXPECT_EQ(ReadWholeFile(file), std::string(100'000, 'a'));
}

TEST(OddFiles, WhatIsNoFileIsNeitherWrittenNorMovedNorDeleted) {
  const TemporaryFolder folder;
  const ScriptedServer server(HttpReply(200, "body"));
  const std::string file = folder / "map";
  const std::string temporary = file + ".TMP";
  const auto download = [](const std::string& to) { return x77fc64c7(serverName, "/", to.c_str(), nullptr, nullptr); };
  for (const std::string& place : {file, temporary}) {
    EXPECT_EQ(mkfifo(place.c_str(), 0600), 0);  // as a device, which only root can make
    EXPECT_FALSE(download(file)) << place;
    EXPECT_TRUE(fs::is_fifo(place)) << place;
    fs::remove(place);
    EXPECT_TRUE(fs::is_empty(folder.path)) << place;
  }
  WriteWholeFile(folder / "other", "kept");
  fs::create_symlink(folder / "other", temporary);
  EXPECT_FALSE(download(file));
  EXPECT_EQ(ReadWholeFile(folder / "other"), "kept");
  EXPECT_TRUE(fs::is_symlink(temporary));
  EXPECT_FALSE(download(folder / "missing/map"));
}

TEST(OddFiles, NothingStaysOfAFileThatTheDiskHasNoRoomFor) {
  const TemporaryHome home;
  constexpr std::size_t size = 100'000;
  const ScriptedServer server(HttpReply(200, std::string(size, 'x')));
  const std::string file = home.folder / "map";
  fs::create_directories(home.folder / "documents/NVTranslation");
  CSettingsFile settings;
  settings.SetText("a", std::string(size - 3, 'x'));
  CTranslationCatalogue catalogue;
  catalogue.Translate(std::string(size, 'x'));
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  // The last bytes show no sooner than at the close. A signal that tells of the limit would end this process.
  for (const std::size_t room : {std::size_t{0}, size / 2, size - 1, size}) {
    WriteWholeFile(file, "old");
    const rlimit limit{room, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    const bool saved = settings.Save(home.folder / "settings.ini");
    const bool downloaded = x77fc64c7(serverName, "/", file.c_str(), nullptr, nullptr);
    catalogue.WriteMissFile();
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(saved, room == size) << room;
    EXPECT_EQ(downloaded, room == size) << room;
    EXPECT_EQ(fs::exists(file), room == size) << room;
    EXPECT_FALSE(fs::exists(file + ".TMP")) << room;
  }
}

TEST(OddFiles, ADataFolderWithoutANameIsNotTheRootFolder) {
  const TemporaryHome home;
  const ScopedVariable tooLong("XDG_DATA_HOME", "/" + std::string(300, 'x'));
  x3e491215("Atlas");
  g_serviceManager->SaveProfile();
  CloseSession();
  EXPECT_FALSE(fs::remove("/settings.ini")) << "that is where it would stand, for who may write there";
}

}  // namespace
}  // namespace nvsupport
