// The module in a host without Qt, on a real screen: while the host's thread is in the module the user acts on another
// one. Each test needs a process of its own, as CTest gives it one, because Qt keeps its first display.
#include <gtest/gtest.h>
#include <nvsupport/nvsupport_module.h>

#include <atomic>

#include "display/screen.h"
#include "mapshop/map_shop_reply.h"
#include "service/local_service.h"
#include "soak/host_state.h"
#include "support/scripted_server.h"
#include "support/test_authority.h"
#include "support/wire_items.h"

// Of Xlib, whose own header takes names that are used here.
using XHandler = int (*)(void* display, void* event);
extern "C" XHandler XSetErrorHandler(XHandler handler);

namespace nvsupport::testing {
namespace {

constexpr const char* signInTitle = "Sign in to Your Account";
constexpr const char* serviceHost = "service.norvane.example";
constexpr const char* messageTitle = "Account Manager";

int IgnoreXErrors(void*, void*) {
  return 0;
}

struct Module : NVSupportModule {
  explicit Module(const std::string& path = NV_MODULE) {
    EXPECT_EQ(NVSupportOpen(this, path.c_str()), nullptr);
    openSession("Screen Test");
  }
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;
  ~Module() { NVSupportClose(this); }

  // Asks for a session token while the user acts.
  bool AskForToken(xcb_window_t owner, const std::function<void()>& act) const {
    const soak::HostState host;
    const XHandler before = XSetErrorHandler(&IgnoreXErrors);
    std::thread user(act);
    char token[20];
    const bool has = sessionToken(reinterpret_cast<NVWindow>(static_cast<std::uintptr_t>(owner)), token);
    user.join();
    EXPECT_EQ(host.Difference(), "");
    EXPECT_EQ(XSetErrorHandler(before), &IgnoreXErrors);
    return has;
  }
};

bool IsMapped(const std::string& library) {
  return ReadWholeFile("/proc/self/maps").find(library) != std::string::npos;
}

class OnScreen : public ::testing::Test {
 protected:
  TemporaryHome home;
  Screen screen;
};

TEST_F(OnScreen, QtComesWithTheFirstDialogAndTheModuleCanGoAndComeAgain) {
  const ScopedVariable startup("DESKTOP_STARTUP_ID", "of the host");
  const ScopedVariable session("SESSION_MANAGER", "of the host");
  const ScopedVariable desktop[] = {
      {"XDG_CURRENT_DESKTOP", "KDE"}, {"KDE_FULL_SESSION", "true"}, {"KDE_SESSION_VERSION", "5"}};
  WriteWholeFile(home.folder / "config/kdeglobals", "[General]\nfont=DejaVu Sans,20,-1,5,50,0,0,0,0,0\n");
  for (const char* opening : {"first", "second", "third"}) {
    EXPECT_EQ(IsMapped("libQt6Widgets"), opening != std::string("first")) << opening;
    // An owner that is no window is none.
    EXPECT_FALSE(Module().AskForToken(0x7654321, [&] {
      EXPECT_GT(screen.AreaOf(screen.Await(signInTitle)).width, 900) << "in the large letters of the desktop";
      screen.Type("\033");
    })) << opening;
    EXPECT_FALSE(IsMapped("nvsupport.so")) << opening;
    EXPECT_TRUE(WaitUntil([&] { return screen.Windows().size() == 1; })) << opening << " dialog is gone";
  }
}

// On the second of two monitors, under the top-level window of the one that the host names.
TEST_F(OnScreen, ADialogStaysWithTheHostsWindowWhereTheUserMovedItTo) {
  RunProgram({"xrandr", "--setmonitor", "left", "1024/270x768/200+0+0", "screen"});
  RunProgram({"xrandr", "--setmonitor", "right", "1024/270x768/200+1024+0", "none"});
  const Module module;
  const auto offset = [&](xcb_window_t dialog) {
    const xcb_rectangle_t from = screen.AreaOf(screen.hostWindow);
    const xcb_rectangle_t to = screen.AreaOf(dialog);
    return std::pair(to.x - from.x, to.y - from.y);
  };
  std::pair<int, int> moved;
  module.AskForToken(screen.partOfHostWindow, [&] {
    const xcb_window_t dialog = screen.Await(signInTitle);
    EXPECT_EQ(screen.Property(dialog, "WM_TRANSIENT_FOR"), std::vector{screen.hostWindow});
    const xcb_rectangle_t area = screen.AreaOf(dialog);
    const xcb_rectangle_t owner = screen.AreaOf(screen.hostWindow);
    constexpr int frame = 30;
    const auto isNear = [](int value, int expected) { return std::abs(value - expected) < frame; };
    EXPECT_TRUE(WaitUntil([&] { return isNear(offset(dialog).first, (owner.width - area.width) / 2); }));
    EXPECT_TRUE(WaitUntil([&] { return isNear(offset(dialog).second, (owner.height - area.height) / 2); }));
    screen.Move(dialog, 1290, 130);
    moved = offset(dialog);
    screen.Type("\033");
  });
  for (const int x : {1130, 1180}) {
    screen.Move(screen.hostWindow, x, 90);
    module.AskForToken(screen.partOfHostWindow, [&] {
      const xcb_window_t dialog = screen.Await(signInTitle);
      EXPECT_TRUE(WaitUntil([&] { return offset(dialog) == moved; })) << "owner at " << x;
      if (x == 1180) screen.Do("windowclose " + std::to_string(screen.hostWindow));
      screen.Type("\033");
    });
  }
}

TEST_F(OnScreen, TheWaitCursorIsOverAHostsWindowBeforeTheFirstDialogAndWithoutQt) {
  std::atomic<bool> isSilent = true;
  const ScriptedServer shop(
      [&](const std::string&) {
        EXPECT_TRUE(WaitUntil([&] { return !isSilent; })) << "the shop goes on";
        return HttpReply(200, ReplyWith({}, 7));
      },
      serviceHost);
  std::string watch = "Xcur";  // of one green pixel
  for (const unsigned word :
       {16u, 0x10000u, 1u, 0xFFFD0002u, 24u, 28u, 36u, 0xFFFD0002u, 24u, 1u, 1u, 1u, 0u, 0u, 0u, 0xFF00FF00u})
    watch += Int(word);
  WriteWholeFile(home.folder / "default/cursors/watch", watch);
  const ScopedVariable themes("XCURSOR_PATH", home.folder.path.string());
  const Module module;
  const xcb_window_t second = screen.OpenWindow({300, 60, 600, 500});
  const xcb_window_t ofAnother = screen.OpenWindow({20, 20, 600, 500}, 1);
  const auto pointAt = [&](xcb_window_t window) {
    const std::string id = std::to_string(window);
    screen.Do("windowactivate " + id + " mousemove --window " + id + " 300 300");
  };
  pointAt(second);
  const auto usual = screen.ShownCursor();
  std::thread user([&] {
    for (const xcb_window_t window : {second, ofAnother, screen.hostWindow}) {
      pointAt(window);
      const auto shown = window != ofAnother ? std::vector{0xFF00FF00u} : usual;
      EXPECT_TRUE(WaitUntil([&] { return screen.ShownCursor() == shown; })) << "of the user's theme, over its windows";
    }
    isSilent = false;
  });
  const MapShopPoint corners[] = {{55, 5}, {47, 15}};
  EXPECT_EQ(module.closeSearch(module.search(corners, 2)), 7);
  user.join();
  EXPECT_TRUE(WaitUntil([&] { return screen.ShownCursor() == usual; })) << "once it goes on";
  EXPECT_FALSE(IsMapped("libQt6Widgets") || IsMapped("libxcb-cursor"));
}

TEST_F(OnScreen, TheWaitCursorIsThereWhileTheThreadIsBlocked) {
  std::atomic<bool> isSilent = false;
  const TestAuthority authority;
  const ScriptedServer service(
      [&](const std::string&) {
        EXPECT_TRUE(WaitUntil([&] { return !isSilent; })) << "the service goes on";
        return HttpReply(200, Int(5));
      },
      serviceHost, authority.Issue(serviceHost));
  Module().AskForToken(0, [&] {
    const xcb_window_t dialog = screen.Await(signInTitle);
    const xcb_rectangle_t area = screen.AreaOf(dialog);
    const std::string userId = std::to_string(area.width * 120 / 295) + " " + std::to_string(area.height * 70 / 162);
    screen.Do("mousemove 0 0");
    const auto arrow = screen.ShownCursor();
    screen.Do("mousemove --window " + std::to_string(dialog) + " " + userId);
    EXPECT_TRUE(WaitUntil([&] { return screen.ShownCursor() != arrow; })) << "the cursor of texts";
    const auto usual = screen.ShownCursor();
    screen.Type("ann\tsecret1\n");
    screen.TypeInto(messageTitle, "\n");
    screen.Await(signInTitle);
    isSilent = true;
    screen.Type("\tsecret1\n");
    const auto isOther = [&] { return screen.ShownCursor() != usual && screen.ShownCursor().size() > 1; };
    EXPECT_TRUE(WaitUntil(isOther)) << "while the thread is blocked";
    isSilent = false;
    screen.TypeInto(messageTitle, "\n");
    screen.Await(signInTitle);
    EXPECT_TRUE(WaitUntil([&] { return screen.ShownCursor() == usual; })) << "once it goes on";
    screen.Type("\033");
  });
}

TEST_F(OnScreen, AnAccountIsMadeSignedIntoAndSavedByKeyboardAlone) {
  const LocalService service;
  const Module module;
  const auto askForToken = [&](const char* product, const std::function<void()>& act) {
    module.openSession(product);
    EXPECT_TRUE(module.AskForToken(0, act)) << product;
  };
  askForToken("First", [&] {
    screen.TypeInto(signInTitle, std::string(7, '\t') + "\n");  // from the user ID round to Create Account
    screen.TypeInto("Create an Online Account", "Demo User\tsecret 7\tsecret 7\tA Demo User\t\tdemo@norvane.example\n");
    screen.TypeInto("Give your Computer a Name", "\n");
  });
  askForToken("Second", [&] {
    screen.TypeInto(signInTitle, "demo user\twrong 77\n");
    screen.TypeInto(messageTitle, "\n");
    screen.TypeInto(signInTitle, std::string(8, '\t') + "SECRET7\t \n");  // round to the field; and saves the password
  });
  askForToken("Second", [] {});
}

TEST_F(OnScreen, AHostWithAWindowOwnsTheDialogsAndStaysAwakeWhileAServerIsSilent) {
  std::vector<std::uint32_t> usual;
  const ScriptedServer server(
      [&](const std::string& request) {
        if (!request.starts_with("POST"))
          return Reply{.bytes = "HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\n12345", .end = Reply::End::hold};
        EXPECT_TRUE(WaitUntil([&] { return screen.ShownCursor() != usual; })) << "while the thread is blocked";
        return HttpReply(200, ReplyWith({{"Map", 1, "", "f", 2}}, 7));
      },
      serviceHost);
  const std::string file = home.folder / "map";
  Process host({NV_HOST_WINDOW});
  const xcb_window_t window = screen.Await("nvhost");
  screen.Do("mousemove --window " + std::to_string(window) + " 300 300");
  usual = screen.ShownCursor();
  screen.Type("\t\t\t ");  // to Search
  const auto download = [&] {
    EXPECT_TRUE(WaitUntil([&] {
      screen.Do("key alt+d sleep 1");  // in vain until a search has ended or a download is cancelled
      return screen.Find("Download to") != 0;
    }));
    screen.TypeInto("Download to", file + "\n");
    screen.Await("nvhost");
  };
  download();
  EXPECT_TRUE(WaitUntil([&] { return std::filesystem::exists(file + ".TMP"); }));
  screen.Do("key alt+c");
  download();
  // A search is one more connection, for which the server leaves that of the first download.
  EXPECT_TRUE(WaitUntil([&] {
    screen.Do("key alt+s sleep 1");  // in vain until the window has seen that it is active again
    return server.Requests().size() >= 4;
  }));
  EXPECT_TRUE(server.Requests().at(2).starts_with("POST")) << "the second download waits for the first";
  EXPECT_TRUE(WaitUntil([&] { return screen.ShownCursor() == usual; })) << "once it goes on";
  screen.Do("key alt+c");
  screen.Do("key alt+t");
  const xcb_window_t signIn = screen.Await(signInTitle);
  EXPECT_EQ(screen.Property(signIn, "WM_TRANSIENT_FOR"), std::vector{window});
  screen.Type("\n");
  EXPECT_EQ(screen.Property(screen.Await(messageTitle), "WM_TRANSIENT_FOR"), std::vector{signIn});
  screen.Type("\n");
  screen.TypeInto(signInTitle, "\033");
  screen.Await("nvhost");
  screen.Do("key alt+F4");
  EXPECT_EQ(host.Join(), 0);
  EXPECT_FALSE(std::filesystem::exists(file + ".TMP"));
}

// The plugin stands beside the file that a link leads to.
TEST(WithoutAScreen, ADialogFailsAndSaysWhy) {
  TemporaryHome home;
  const std::string link = home.folder / "library.so";
  std::filesystem::create_symlink(NV_MODULE, link);
  const std::string alone = home.folder / "nvsupport.so";
  std::filesystem::copy_file(NV_MODULE, alone);
  const struct {
    std::string module;
    const char* variable;
    const char* value;
    std::string reason;
  } cases[] = {
      {link, "DISPLAY", "", "wayland: WAYLAND_DISPLAY is not set, xcb: DISPLAY is not set; start the host in a "},
      {NV_MODULE, "DISPLAY", ":64999", "xcb: no X server at DISPLAY=:64999 lets this "},
      {NV_MODULE, "WAYLAND_DISPLAY", "/nowhere/socket", "wayland: no Wayland server answers at /nowhere/socket, xcb: "},
      {NV_MODULE, "QT_QPA_PLATFORM", "nonsense", "nonsense: Qt has no plugin for it in "},
      {alone, "DISPLAY", "", (home.folder / "nvsupport-qt.so") + ": cannot open shared object file"},
  };
  for (const auto& row : cases) {
    const ScopedVariable variable(row.variable, row.value);
    ::testing::internal::CaptureStderr();
    EXPECT_FALSE(Module(row.module).AskForToken(0, [] {})) << row.reason;
    const std::string told = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(told.find(row.reason), std::string::npos) << told;
    EXPECT_NE(told.find("\nInternal error: Dialog 102 failed: err=0x5b3\n"), std::string::npos) << told;
  }
}

}  // namespace
}  // namespace nvsupport::testing
