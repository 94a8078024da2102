#include "x11/desktop/x11_desktop.h"

#include "base/log.h"
#include "platform/accessibility_trust.h"
#include "platform/event_poster.h"
#include "platform/event_tap.h"
#include "platform/mouse_monitor.h"
#include "platform/pasteboard.h"
#include "platform/workspace.h"
#include "virtual_desktop/applications.h"
#include "virtual_desktop/virtual_desktop.h"
#include "x11/desktop/x11_target_focus.h"
#include "x11/desktop/x11_workspace.h"
#include "x11/pumped_queue.h"

#include <gmock/gmock.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {
namespace {

using testing::HasSubstr;

std::string frontmost(const Workspace& workspace) {
  for (const auto& application : workspace.runningApplications()) {
    if (application->isActive) return application->bundleIdentifier.value_or("unnamed");
  }
  return "none";
}

// The adapter does not wait long for a server that a busy machine keeps from answering.
std::string frontmostOnceAnswered(const Workspace& workspace) {
  waitUntil([&] { return frontmost(workspace) != "none"; }, std::chrono::seconds(2));
  return frontmost(workspace);
}

std::unique_ptr<X11Desktop> connectTo(const std::string& display, MainQueue& queue,
                                      std::function<void()> lost = {}) {
  X11Desktop::Options options;
  options.display = display;
  options.connectionLost = std::move(lost);
  auto desktop = X11Desktop::connect(options, queue);
  EXPECT_TRUE(desktop.ok());
  return std::move(desktop).value();
}

// A window of this process, as an application's main window.
class OwnWindow {
 public:
  explicit OwnWindow(const std::string& display) : x_(std::move(XConnection::open(display)).value()) {
    window_ = xcb_generate_id(x_->get());
    xcb_create_window(x_->get(), XCB_COPY_FROM_PARENT, window_, x_->root(), 100, 100, 200, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    const std::string names("quorlo\0Quorlo", 14);
    xcb_change_property(x_->get(), XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(names.size()), names.data());
    xcb_map_window(x_->get(), window_);
    x_->sync();
  }
  xcb_window_t window() const { return window_; }
  void focus() {
    xcb_set_input_focus(x_->get(), XCB_INPUT_FOCUS_POINTER_ROOT, window_, XCB_CURRENT_TIME);
    x_->sync();
  }
  // As a menu does that is open.
  void grabPointer() {
    xcb_grab_pointer(x_->get(), 0, window_, XCB_EVENT_MASK_BUTTON_PRESS, XCB_GRAB_MODE_ASYNC,
                     XCB_GRAB_MODE_ASYNC, XCB_WINDOW_NONE, XCB_CURSOR_NONE, XCB_CURRENT_TIME);
    x_->sync();
  }

 private:
  std::unique_ptr<XConnection> x_;
  xcb_window_t window_;
};

TEST(X11DesktopTest, TheActiveApplicationIsKnownAsSoonAsTheWindowManagerKnowsIt) {
  VirtualDesktop desktop;
  X11Workspace::Options options;
  options.display = desktop.display();
  auto workspace = std::move(X11Workspace::connect(options)).value();
  EXPECT_EQ(frontmost(*workspace), "none");
  std::vector<std::string> installed;
  for (const auto& each : workspace->installedApplications()) installed.push_back(each.bundleIdentifier);
  EXPECT_THAT(installed, testing::IsSupersetOf({"debian-xterm", "org.xfce.mousepad"}));

  Xterm terminal(desktop);
  Mousepad editor(desktop);
  ASSERT_TRUE(waitUntil([&] { return frontmost(*workspace) == "org.xfce.mousepad"; }))
      << frontmost(*workspace);
  std::atomic<int> changes = 0;
  const auto observation = workspace->observeActiveWindow([&] { ++changes; });
  for (int i = 0; i < 20; ++i) {
    std::uint64_t stamp = 0;
    EXPECT_TRUE(waitUntil([&] { return (stamp = workspace->stamp()) != 0 && workspace->stamp() == stamp; }));
    terminal.activate();
    EXPECT_NE(workspace->stamp(), stamp) << "before anything was asked";
    EXPECT_EQ(frontmostOnceAnswered(*workspace), "debian-xterm");
    EXPECT_EQ(workspace->activeWindow().window, terminal.window());
    EXPECT_EQ(workspace->activeWindow().windowClass, "XTerm");
    EXPECT_EQ(workspace->activeWindow().processIdentifier, terminal.process().pid());
    editor.activate();
    EXPECT_EQ(frontmostOnceAnswered(*workspace), "org.xfce.mousepad");
  }

  OwnWindow own(desktop.display());
  EXPECT_TRUE(waitUntil([&] { return workspace->activeWindow().isOwn; }));
  EXPECT_EQ(frontmost(*workspace), workspace->ownBundleIdentifier());
  EXPECT_EQ(workspace->runningApplications().size(), 3U);
  EXPECT_GE(changes, 40);

  PumpedQueue queue;
  const auto connection = std::move(XConnection::open(desktop.display())).value();
  X11TargetFocus focus(*connection, *workspace, queue);
  focus.remember();
  const auto after = [&](void (X11TargetFocus::*give)(TargetFocus::Completion)) {
    std::optional<bool> isDone;
    (focus.*give)([&](bool isActive) { isDone = isActive; });
    EXPECT_TRUE(queue.pumpUntil([&] { return isDone == true; }));
    return frontmost(*workspace);
  };
  EXPECT_EQ(after(&X11TargetFocus::giveToTarget), "org.xfce.mousepad");
  EXPECT_EQ(after(&X11TargetFocus::giveBack), workspace->ownBundleIdentifier());

  editor.process().stop();
  EXPECT_TRUE(waitUntil([&] { return workspace->runningApplications().size() == 2; }));
}

TEST(X11DesktopTest, WithoutAWindowManagerTheFocusTellsWhoIsActive) {
  TempDir directory;
  XorgServer server(directory.path(), {});
  X11Workspace::Options options;
  options.display = server.display();
  auto workspace = std::move(X11Workspace::connect(options)).value();
  EXPECT_EQ(frontmost(*workspace), "none");
  OwnWindow window(server.display());
  window.focus();
  EXPECT_EQ(frontmost(*workspace), "org.quorlo.Quorlo");
  EXPECT_EQ(workspace->stamp(), 0U) << "the next window may have the focus unheard";
}

TEST(X11DesktopTest, ClicksAreReportedWhileAnybodyListensEvenUnderAGrab) {
  VirtualDesktop desktop;
  PumpedQueue queue;
  const auto x11 = connectTo(desktop.display(), queue);
  int clicks = 0;
  int others = 0;
  auto subscription = x11->mouseMonitor().observeMouseDown(
      [&](MouseButton button) { ++(button == MouseButton::left ? clicks : others); });
  x11->workspace().runningApplications();
  OwnWindow window(desktop.display());
  for (const int button : {5, 3, 2, 1}) desktop.pointer().click(30, 30, button);
  ASSERT_TRUE(queue.pumpUntil([&] { return clicks == 1; }));
  EXPECT_EQ(others, 2) << "the wheel is no button";
  window.grabPointer();
  desktop.pointer().click(600, 500);
  EXPECT_TRUE(queue.pumpUntil([&] { return clicks == 2; }));
  subscription.reset();
  desktop.pointer().click(30, 30);
  queue.pump();
  EXPECT_EQ(clicks, 2);
}

TEST(X11DesktopTest, EveryKindOfApplicationPastesThePiecesThatWereReplacedAtOnce) {
  VirtualDesktop desktop;
  PumpedQueue queue;
  const auto x11 = connectTo(desktop.display(), queue);
  const auto put = [&](const std::string& text) {
    PasteboardItem item;
    item.setText(text);
    x11->pasteboard().setContents({{item}, {"org.nspasteboard.TransientType"}, false});
  };
  const auto pasteAndReplace = [&](const std::string& text) {
    put(text);
    x11->eventPoster().paste();
    put("the user's");
  };
  const auto expectBothPieces = [&](Application& application) {
    pasteAndReplace("first ");
    pasteAndReplace("second");
    EXPECT_EQ(application.textOnceItIs("first second"), "first second");
  };
  Mousepad gtk(desktop);
  expectBothPieces(gtk);
  Featherpad qt(desktop);
  expectBothPieces(qt);
  Xterm terminal(desktop);
  expectBothPieces(terminal);
}

TEST(X11DesktopTest, NoServerIsAnErrorThatNamesTheDisplay) {
  PumpedQueue queue;
  X11Desktop::Options options;
  options.display = ":987";
  const auto desktop = X11Desktop::connect(options, queue);
  ASSERT_FALSE(desktop.ok());
  EXPECT_THAT(desktop.error().message, HasSubstr("':987'"));
  EXPECT_THAT(XConnection::open("nonsense").error().message, HasSubstr("'nonsense': this is no name"));
}

TEST(X11DesktopTest, AServerWithoutXtestIsToldOfAndTheRestWorks) {
  std::vector<std::string> lines;
  const auto log = redirectLog([&](LogLevel, std::string_view line) { lines.emplace_back(line); });
  TempDir directory;
  XorgServer server(directory.path(), {"-extension", "XTEST"});
  PumpedQueue queue;
  const auto x11 = connectTo(server.display(), queue);
  EXPECT_FALSE(x11->accessibilityTrust().isProcessTrusted());
  EXPECT_THAT(x11->accessibilityTrust().obstacles(), testing::ElementsAre(AccessibilityObstacle::noXtest));
  EXPECT_THAT(lines, testing::Contains(HasSubstr("XTEST")));
  EXPECT_EQ(x11->eventTap().create([](auto, auto, auto) { return TapVerdict::pass; }, nullptr), nullptr);
  EXPECT_TRUE(x11->workspace().runningApplications().empty());
}

TEST(X11DesktopTest, AServerThatGoesAwayIsReportedOnceAndNothingHangs) {
  auto desktop = std::make_unique<VirtualDesktop>();
  PumpedQueue queue;
  int lost = 0;
  auto x11 = connectTo(desktop->display(), queue, [&] { ++lost; });
  EXPECT_TRUE(x11->accessibilityTrust().isProcessTrusted());
  desktop->server().stop();
  ASSERT_TRUE(queue.pumpUntil([&] { return lost > 0; }));

  EXPECT_FALSE(x11->accessibilityTrust().isProcessTrusted());
  PasteboardItem item;
  item.setText("text");
  x11->pasteboard().setContents({{item}, {}, false});
  std::optional<std::vector<PasteboardItem>> read;
  x11->pasteboard().read({{}, [&](PasteboardCopy copy) { read = std::move(copy.items); }});
  EXPECT_TRUE(queue.pumpUntil([&] { return read.has_value(); }));
  EXPECT_TRUE(x11->workspace().runningApplications().empty());
  x11.reset();
  queue.pump();
  EXPECT_EQ(lost, 1);
}

}  // namespace
}  // namespace quorlo
