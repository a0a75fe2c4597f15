// The user's viewer, played by a script that tells what it was given.
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

int childSignals = 0;

TEST(OpenDocument, StartsTheViewerWithTheTargetAlone) {
  const TemporaryFolder folder;
  const ScopedVariable path("PATH", folder.path.string() + ":/usr/bin:/bin");
  const std::string out = folder / "out";
  WriteWholeFile(folder / "xdg-open",
                 "#!/bin/sh\necho noise\necho noise >&2\nexec > '" + out + ".part'\necho \"$# $1\"\n" +
                     "test -e /proc/$$/fd/77 && echo inherited\nmv '" + out + ".part' '" + out + "'\n");
  std::filesystem::permissions(folder / "xdg-open", std::filesystem::perms(0700));
  const std::string address = "http://host.example/a.htm?x=1&y=$(id);'z' \"q\"";
  const std::string file = folder / "a b;c.txt";
  WriteWholeFile(file, "");
  EXPECT_EQ(dup2(STDOUT_FILENO, 77), 77);  // a descriptor of the host that its children would inherit
  const auto before = signal(SIGCHLD, [](int) { ++childSignals; });
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
}

TEST(OpenDocument, TellsTheAddressWithoutAViewer) {
  const ScopedVariable nowhere("PATH", "/nowhere");
  ::testing::internal::CaptureStderr();
  EXPECT_FALSE(OpenDocument("http://host.example/", nullptr));
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "xdg-open cannot be started to show http://host.example/\n");
}

}  // namespace
}  // namespace nvsupport
