#include "x11/desktop/x11_target_focus.h"

#include "virtual_desktop/temp_dir.h"
#include "virtual_desktop/xorg_server.h"
#include "x11/desktop/x11_workspace.h"
#include "x11/pumped_queue.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace quorlo {
namespace {

// A server without a window manager, and two windows on it.
struct X11TargetFocusTest : testing::Test {
  xcb_window_t openWindow() {
    const auto window = xcb_generate_id(x->get());
    xcb_create_window(x->get(), XCB_COPY_FROM_PARENT, window, x->root(), 10, 10, 50, 50, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_change_property(x->get(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8, 4,
                        "a\0A");
    xcb_map_window(x->get(), window);
    x->sync();
    return window;
  }
  xcb_window_t focused() const {
    return x->reply(xcb_get_input_focus_reply, xcb_get_input_focus(x->get()))->focus;
  }
  std::optional<bool> giveBack() {
    std::optional<bool> result;
    focus->giveBack([&](bool isActive) { result = isActive; });
    EXPECT_FALSE(result) << "never inside the call";
    queue.pumpUntil([&] { return result.has_value(); });
    return result;
  }

  static std::unique_ptr<X11Workspace> connectWorkspace(const std::string& display) {
    X11Workspace::Options options;
    options.display = display;
    return std::move(X11Workspace::connect(options)).value();
  }

  TempDir directory;
  XorgServer server{directory.path(), {}};
  PumpedQueue queue;
  std::unique_ptr<XConnection> x = std::move(XConnection::open(server.display())).value();
  std::unique_ptr<X11Workspace> workspace = connectWorkspace(server.display());
  std::unique_ptr<X11TargetFocus> focus = std::make_unique<X11TargetFocus>(*x, *workspace, queue);
};

TEST_F(X11TargetFocusTest, TheFocusGoesToOurWindowAndBackWhereNoWindowManagerHelps) {
  const auto target = openWindow();
  const auto own = openWindow();
  xcb_set_input_focus(x->get(), XCB_INPUT_FOCUS_PARENT, target, XCB_CURRENT_TIME);
  x->sync();
  focus->remember();
  focus->take(own);
  ASSERT_TRUE(queue.pumpUntil([&] { return focused() == own; }));
  EXPECT_EQ(giveBack(), true);
  EXPECT_EQ(focused(), target);

  focus->take(own);
  ASSERT_TRUE(queue.pumpUntil([&] { return focused() == own; }));
  xcb_unmap_window(x->get(), target);
  x->sync();
  EXPECT_EQ(giveBack(), false) << "hidden, and nobody to show it";
  xcb_destroy_window(x->get(), target);
  x->sync();
  EXPECT_EQ(giveBack(), false);
  EXPECT_EQ(focused(), own);
}

TEST_F(X11TargetFocusTest, NothingIsGivenBackWhereNothingHadTheFocus) {
  focus->remember();
  EXPECT_EQ(giveBack(), false);
  bool isCalled = false;
  focus->giveBack([&](bool) { isCalled = true; });
  focus.reset();
  queue.pump();
  EXPECT_FALSE(isCalled);
}

}  // namespace
}  // namespace quorlo
