// The user's viewer, played by a script that tells what it was given.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <thread>

#include "storage/desktop.h"
#include "support/temporary_home.h"

namespace nvsupport {
namespace {

using namespace testing;

int childSignals = 0;

class OpenDocumentTest : public ::testing::Test {
 protected:
  // An xdg-open that writes its arguments, whether it has got descriptor 77, and some noise.
  OpenDocumentTest() {
    const std::string out = folder / "out";
    WriteWholeFile(folder / "xdg-open",
                   "#!/bin/sh\necho noise\necho noise >&2\nexec > '" + out + ".part'\necho \"$# $1\"\n" +
                       "test -e /proc/$$/fd/77 && echo inherited\nmv '" + out + ".part' '" + out + "'\n");
    chmod((folder / "xdg-open").c_str(), 0700);
  }
  // What the viewer wrote, waited for, up to the time limit of the test.
  std::string Seen() const {
    while (!std::filesystem::exists(folder / "out")) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    std::string text = ReadWholeFile(folder / "out");
    std::filesystem::remove(folder / "out");
    return text;
  }

  const TemporaryFolder folder;
  const ScopedVariable path{"PATH", folder.path.string() + ":/usr/bin:/bin"};
};

TEST_F(OpenDocumentTest, StartsTheViewerWithTheTargetAlone) {
  const std::string address = "http://host.example/a.htm?x=1&y=$(id);'z' \"q\"";
  const std::string file = folder / "a b;c.txt";
  WriteWholeFile(file, "");
  ASSERT_EQ(dup2(STDOUT_FILENO, 77), 77);  // a descriptor of the host that its children would inherit
  const auto before = signal(SIGCHLD, [](int) { ++childSignals; });
  ::testing::internal::CaptureStdout();
  EXPECT_TRUE(OpenDocument(address, nullptr));
  EXPECT_EQ(Seen(), "1 " + address + "\n");
  EXPECT_TRUE(OpenDocument(folder.path.string() + "\\a b;c.txt", nullptr));
  EXPECT_EQ(Seen(), "1 " + file + "\n");
  EXPECT_EQ(::testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "the host has got a child";
  EXPECT_EQ(childSignals, 0);
  signal(SIGCHLD, before);
  close(77);
}

TEST_F(OpenDocumentTest, RefusesWhatTheViewerIsNotToSee) {
  for (const char* target :
       {"", "-h", "--help", "mailto:a@host.example", "javascript:alert(1)", "http://a\nb", "/no/such/file"}) {
    EXPECT_FALSE(OpenDocument(target, nullptr)) << target;
  }
}

TEST_F(OpenDocumentTest, TellsTheAddressWithoutAViewer) {
  const ScopedVariable nowhere("PATH", "/nowhere");
  ::testing::internal::CaptureStderr();
  EXPECT_FALSE(OpenDocument("http://host.example/", nullptr));
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "xdg-open cannot be started to show http://host.example/\n");
}

}  // namespace
}  // namespace nvsupport
