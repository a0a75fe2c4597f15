// Odd files: what lies in the place of a file that the library writes, who else has it, and what the system refuses.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
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

// A file size limit of a few bytes, as long as the object lives. A signal that tells of it would end this process.
class FileSizeLimit {
 public:
  FileSizeLimit() {
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limited{100, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limited);
  }
  ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &before); }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before{};
};

TEST(OddFiles, AFileIsNobodyElsesWhileItIsWritten) {
  const TemporaryFolder folder;
  const std::string name = folder / "a";
  const auto create = [&] {
    const HANDLE file =
        CreateFileA(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    return platform::ObjectHandle(file != INVALID_HANDLE_VALUE ? file : nullptr);
  };
  platform::ObjectHandle file = create();
  ASSERT_TRUE(file);
  DWORD written = 0;
  EXPECT_TRUE(WriteFile(file.get(), "text", 4, &written, nullptr));
  EXPECT_FALSE(create());
  EXPECT_FALSE(MoveFileA(name.c_str(), (folder / "b").c_str()));
  EXPECT_FALSE(DeleteFileA(name.c_str()));
  EXPECT_TRUE(CloseHandle(file.release()));
  EXPECT_EQ(ReadWholeFile(name), "text");
  EXPECT_TRUE(MoveFileA(name.c_str(), (folder / "b").c_str()));
  EXPECT_TRUE(create());
  EXPECT_TRUE(DeleteFileA(name.c_str()));
}

TEST(OddFiles, OfTwoDownloadsToOneFileTheFirstCounts) {
  const TemporaryFolder folder;
  const ScriptedServer first(HttpReply(200, std::string(100'000, 'a')), "a.example");
  const ScriptedServer second(HttpReply(200, std::string(200'000, 'b')), "b.example");
  const std::string file = folder / "map";
  const auto another = [](void* name) {
    return !x77fc64c7("b.example", "/", static_cast<const std::string*>(name)->c_str(), nullptr, nullptr);
  };
  EXPECT_TRUE(x77fc64c7("a.example", "/", file.c_str(), another, const_cast<std::string*>(&file)));
  EXPECT_EQ(ReadWholeFile(file), std::string(100'000, 'a'));
}

TEST(OddFiles, WhatIsNoFileIsNeitherWrittenNorMovedNorDeleted) {
  const TemporaryFolder folder;
  const ScriptedServer server(HttpReply(200, "body"));
  const std::string file = folder / "map";
  const std::string temporary = file + ".TMP";
  const auto download = [&] { return x77fc64c7(serverName, "/", file.c_str(), nullptr, nullptr); };
  WriteWholeFile(folder / "other", "kept");
  fs::create_symlink(folder / "other", temporary);
  EXPECT_FALSE(download());
  EXPECT_EQ(ReadWholeFile(folder / "other"), "kept");
  EXPECT_TRUE(fs::is_symlink(temporary));
  fs::remove(temporary);

  ASSERT_EQ(mkfifo(temporary.c_str(), 0600), 0);
  const int reader = open(temporary.c_str(), O_RDONLY | O_NONBLOCK);
  EXPECT_FALSE(download());
  EXPECT_TRUE(fs::is_fifo(temporary));
  char byte;
  EXPECT_EQ(read(reader, &byte, 1), 0) << "something was written into the pipe";
  close(reader);
  fs::remove(temporary);

  ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);  // as a device, which only root can make
  EXPECT_FALSE(download());
  EXPECT_TRUE(fs::is_fifo(file));
  EXPECT_FALSE(fs::exists(temporary));
}

TEST(OddFiles, AFileSizeLimitIsAFailureAndNoSignal) {
  const TemporaryHome home;
  const ScriptedServer server(HttpReply(200, std::string(5000, 'x')));
  const std::string file = home.folder / "map";
  fs::create_directories(home.folder / "documents/NVTranslation");
  CSettingsFile settings;
  settings.SetText("a", std::string(5000, 'x'));
  CTranslationCatalogue catalogue;
  catalogue.Translate(std::string(5000, 'x'));
  bool saved = true;
  bool downloaded = true;
  {
    const FileSizeLimit limit;
    saved = settings.Save(home.folder / "settings.ini");
    downloaded = x77fc64c7(serverName, "/", file.c_str(), nullptr, nullptr);
    catalogue.WriteMissFile();
  }
  EXPECT_FALSE(saved);
  EXPECT_FALSE(downloaded);
  EXPECT_FALSE(fs::exists(file) || fs::exists(file + ".TMP"));
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
