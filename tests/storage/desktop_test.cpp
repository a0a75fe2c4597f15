// What the user's desktop is asked for: texts of registry files as they are found on disk, and the viewer, played by a
// script that tells what it was given.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>

#include "storage/desktop.h"
#include "support/temporary_home.h"

namespace nvsupport {
namespace {

using namespace testing;

constexpr const char* key = "Software\\Norvane";

TEST(Registry, ReadsEveryFormOfValueAndSkipsBrokenLines) {
  const TemporaryHome home;
  const std::string fits(260, 'x');
  std::string unterminated = "\"Unterminated\"=hex(1):";
  for (int count = 0; count < 261; ++count) unterminated += "79,";
  const struct {
    std::string lines;  // in the middle of the file
    const char* name;
    std::string text;
  } cases[] = {
      {"@=\"standard\"\r\n", "", "standard"},
      {"\"Language\"=\"Deutsch\" ; behind it\r\n", "LANGUAGE", "Deutsch"},
      {"\"Path\" = \"C:\\\\maps\\\\\\\"new\\\"\"\n", "Path", "C:\\maps\\\"new\""},
      {"\"Single\"=\"C:\\maps\"\n", "Single", "C:\\maps"},
      {"\"a=\\\"b\\\"\"=\"odd name\"\n", "a=\"b\"", "odd name"},
      {"\"Number\"=dword:00434241\n", "Number", "ABC"},
      {"\"Bytes\"=hex(1):61,62,\\\r\n  63 , 64,\\\n  00 ; the end\r\n", "Bytes", "abcd"},
      {"\"Gone\"=\"x\"\n\"gone\"=-\n", "Gone", "default"},
      {"\"Deleted\"=\"x\"\n[-HKEY_CURRENT_USER\\SOFTWARE]\n", "Deleted", "default"},
      {"\"Kept\"=\"x\"\n[-HKEY_CURRENT_USER\\Software\\Nor]\n", "Kept", "x"},
      {"\"Twice\"=\"first\"\n", "Twice", "second"},
      {"", "Missing", "default"},
      {"\"NoEnd\"=\"abc\n", "NoEnd", "default"},
      {"\"NoValue\"\n", "NoValue", "default"},
      {"\"NoForm\"=abc\n", "NoForm", "default"},
      {"\"NoNumber\"=dword:xyz\n", "NoNumber", "default"},
      {"\"HalfBytes\"=hex:61,62,6y,63\n", "HalfBytes", "ab"},
      {"\"WideBytes\"=hex:61,162\n", "WideBytes", "a"},
      {"\"CutBytes\"=hex:61,62,\\\n\"Behind\"=\"yes\"\n", "CutBytes", "ab"},
      {"\"Behind\"=\"yes\"\n", "Behind", "yes"},
      {"\"Fits\"=\"" + fits + "\"\n", "Fits", fits},
      {"\"Long\"=\"" + fits + "x\"\n", "Long", "default"},
      {unterminated + "\n", "Unterminated", std::string(261, 'y')},
  };
  for (const auto& row : cases) {
    home.WriteUserRegistry("; a comment" + std::string(10'000, '.') +
                           "\r\n[HKEY_CURRENT_USER\\Other]\r\n\"Language\"=\"wrong\"\r\n"
                           "  [hkey_current_user\\SOFTWARE\\norvane]  \r\n" +
                           row.lines +
                           "[HKEY_CURRENT_USER\\Software\\Norvane\n\"Behind\"=\"no\"\n"
                           "[HKEY_CURRENT_USER\\Software\\Norvane]\n\"TWICE\"=\"second\"");
    EXPECT_EQ(GetRegistryText(HKEY_CURRENT_USER, key, row.name, "default"), row.text) << row.name;
  }
  // A file that is too large is not read in part.
  const std::string value = "REGEDIT4\n[HKEY_CURRENT_USER\\Software\\Norvane]\n\"Language\"=\"Deutsch\"\n";
  home.WriteUserRegistry(value + std::string(4 << 20, '\n'));
  EXPECT_EQ(GetRegistryText(HKEY_CURRENT_USER, key, "Language", "too large"), "too large");
}

TEST(Registry, TheFirstMachineFileCounts) {
  const TemporaryHome home;
  const std::string head = "REGEDIT4\n[HKEY_LOCAL_MACHINE\\Software\\Norvane]\n";
  WriteWholeFile(home.folder / "second/norvane/registry.reg", head + "\"of the second\"=\"yes\"\n");
  WriteWholeFile(home.folder / "third/norvane/registry.reg", head + "\"of the third\"=\"yes\"\n");
  const std::string second = home.folder / "second/";
  const ScopedVariable folders("XDG_CONFIG_DIRS",
                               (home.folder / "first:relative::") + second + ":" + (home.folder / "third"));
  EXPECT_EQ(GetRegistryText(HKEY_LOCAL_MACHINE, key, "of the second", "no"), "yes");
  EXPECT_EQ(GetRegistryText(HKEY_LOCAL_MACHINE, key, "of the third", "no"), "no");

  platform::RegistryKey opened;
  EXPECT_EQ(RegOpenKeyExA(HKEY_LOCAL_MACHINE, key, 0, KEY_READ, opened.put()), ERROR_SUCCESS);
  BYTE bytes[8];
  DWORD size = sizeof bytes;
  const char* const name = "of the second";
  EXPECT_NE(RegQueryValueExA(opened.get(), name, nullptr, nullptr, bytes, nullptr), ERROR_SUCCESS);
  EXPECT_EQ(RegQueryValueExA(opened.get(), name, nullptr, nullptr, nullptr, nullptr), ERROR_SUCCESS) << "it is there";
  EXPECT_EQ(RegQueryValueExA(opened.get(), name, nullptr, nullptr, nullptr, &size), ERROR_SUCCESS);
  EXPECT_EQ(size, sizeof "yes") << "asked for without a place for it";
}

int childSignals = 0;

TEST(OpenDocument, StartsTheViewerWithTheTargetAlone) {
  const TemporaryFolder folder;
  const ScopedVariable path("PATH", folder.path.string() + ":/usr/bin:/bin");
  const std::string out = folder / "out";
  WriteWholeFile(folder / "xdg-open",
                 "#!/bin/bash\necho noise\necho noise >&2\nexec > '" + out + ".part'\necho \"$# $1\"\n" +
                     "test -e /proc/$$/fd/77 && echo inherited\ngrep -q 'SigBlk:.*[^0\t]' /proc/self/status "
                     "&& echo blocked\ngrep -q 'SigIgn:.*[2367abef]..$' "
                     "/proc/self/status && echo ignored\nmv '" +
                     out + ".part' '" + out + "'\n");
  std::filesystem::permissions(folder / "xdg-open", std::filesystem::perms(0700));
  const std::string address = "http://host.example/a.htm?x=1&y=$(id);'z' \"q\"";
  const std::string file = folder / "a b;c.txt";
  WriteWholeFile(file, "");
  EXPECT_EQ(dup2(STDOUT_FILENO, 77), 77);  // a descriptor of the host that its children would inherit
  const auto before = signal(SIGCHLD, [](int) { ++childSignals; });
  signal(SIGUSR1, SIG_IGN);
  ::testing::internal::CaptureStdout();
  for (const auto& [target, seen] : {std::pair(address, address), {folder.path.string() + "\\a b;c.txt", file}}) {
    EXPECT_TRUE(OpenDocument(target, nullptr)) << target;
    while (!std::filesystem::exists(out)) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(ReadWholeFile(out), "1 " + seen + "\n");
    std::filesystem::remove(out);
  }
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "the host has got a child";
  EXPECT_EQ(childSignals, 0);
  signal(SIGCHLD, before);
  close(77);
  for (const char* refused :
       {"", "-h", "--help", "mailto:a@host.example", "javascript:alert(1)", "http://a\nb", "/no/such/file"}) {
    EXPECT_FALSE(OpenDocument(refused, nullptr)) << refused;
  }
  const ScopedVariable nowhere("PATH", "/nowhere");
  ::testing::internal::CaptureStderr();
  EXPECT_FALSE(OpenDocument(address, nullptr));
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "xdg-open cannot be started to show " + address + "\n");
}

}  // namespace
}  // namespace nvsupport
