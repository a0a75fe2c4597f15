// The user's viewer, played by a script that tells what it was given.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>

#include "platform/platform.h"
#include "storage/desktop.h"
#include "support/temporary_home.h"

namespace nvsupport {
namespace {

using testing::ReadWholeFile;
using testing::ScopedVariable;
using testing::TemporaryFolder;
using testing::WriteWholeFile;
namespace fs = std::filesystem;

int childSignals = 0;

// A folder with an xdg-open in it that writes its arguments, whether it has got descriptor 77, and some noise.
class PlayedViewer {
 public:
  PlayedViewer() {
    WriteWholeFile(
        folder / "xdg-open",
        "#!/bin/sh\necho noise\necho noise >&2\n"
        "{ echo \"$# $1\"; test -e /proc/$$/fd/77 && echo inherited; } > \"$VIEWER_OUT.part\"\nmv \"$VIEWER_OUT.part\" "
        "\"$VIEWER_OUT\"\n");
    fs::permissions(folder / "xdg-open", fs::perms(0700));
  }
  // What the viewer wrote, waited for; empty if it was not started within the time.
  std::string Seen(std::chrono::milliseconds patience = std::chrono::seconds(20)) const {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!fs::exists(folder / "out") && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    std::string text = ReadWholeFile(folder / "out");
    fs::remove(folder / "out");
    return text;
  }

  TemporaryFolder folder;

 private:
  ScopedVariable path{"PATH", folder.path.string() + ":/usr/bin:/bin"};
  ScopedVariable out{"VIEWER_OUT", folder / "out"};
};

TEST(OpenDocument, StartsTheViewerWithTheTargetAlone) {
  const PlayedViewer viewer;
  WriteWholeFile(viewer.folder / "a b;c.txt", "");
  const std::string address = "http://host.example/a.htm?x=1&y=$(id);'z' \"q\"";
  ASSERT_EQ(dup2(STDOUT_FILENO, 77), 77);  // a descriptor of the host that its children would inherit
  struct sigaction counting {};
  struct sigaction before {};
  counting.sa_handler = [](int) { ++childSignals; };
  sigaction(SIGCHLD, &counting, &before);
  ::testing::internal::CaptureStdout();
  EXPECT_TRUE(OpenDocument(address, nullptr));
  const std::string first = viewer.Seen();
  EXPECT_TRUE(OpenDocument((viewer.folder.path.string() + "\\a b;c.txt"), nullptr));
  const std::string second = viewer.Seen();
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "the host has got a child";
  EXPECT_EQ(childSignals, 0);
  sigaction(SIGCHLD, &before, nullptr);
  close(77);
  EXPECT_EQ(first, "1 " + address + "\n");
  EXPECT_EQ(second, "1 " + (viewer.folder / "a b;c.txt") + "\n");
}

TEST(OpenDocument, RefusesWhatTheViewerIsNotToSee) {
  const PlayedViewer viewer;
  for (const char* target :
       {"", "-h", "--help", "mailto:a@host.example", "javascript:alert(1)", "http://a\nb", "/no/such/file"}) {
    EXPECT_FALSE(OpenDocument(target, nullptr)) << target;
  }
  EXPECT_EQ(viewer.Seen(std::chrono::milliseconds(50)), "");
}

TEST(OpenDocument, TellsTheAddressWithoutAViewer) {
  const TemporaryFolder empty;
  const ScopedVariable path("PATH", empty.path.string());
  ::testing::internal::CaptureStderr();
  EXPECT_FALSE(OpenDocument("http://host.example/", nullptr));
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "xdg-open cannot be started to show http://host.example/\n");
}

}  // namespace
}  // namespace nvsupport
