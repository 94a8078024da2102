#pragma once

#include "base/result.h"
#include "base/shared_observers.h"
#include "base/subscription.h"
#include "platform/workspace.h"
#include "x11/connection/x_connection.h"
#include "x11/connection/x_event_loop.h"
#include "x11/desktop/active_window.h"
#include "x11/desktop/desktop_files.h"
#include "x11/desktop/keyboard_grab_watch.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// The applications as the window manager tells of them (freedesktop.org, "Extended Window Manager Hints").
// A thread with a connection of its own follows the changes and leaves the latest state for all to read.
//
// How a reader sees the right window: the window manager has set the active window before the user can
// type into it, and the server has sent the notice of that before the next key. A reader waits until the
// thread has handled all that has arrived; when nothing has, that costs no more than asking the socket.
//
// Where the window manager does not tell, the window with the input focus is asked for each time.
class X11Workspace : public Workspace {
 public:
  struct Options {
    std::string display;
    std::string ownBundleIdentifier = "org.quorlo.Quorlo";
    std::vector<std::filesystem::path> applicationDirectories = DesktopFiles::standardDirectories();
    std::function<void()> connectionLost;  // once, on the workspace's thread
  };

  static Result<std::unique_ptr<X11Workspace>> connect(Options options);
  ~X11Workspace() override;

  const RunningApplications& runningApplications() const override;
  std::vector<InstalledApplication> installedApplications() const override;
  const std::string& ownBundleIdentifier() const override { return options_.ownBundleIdentifier; }
  bool openURL(std::string_view url) override;
  // Until the subscription ends, opening the address calls `open`. Main thread.
  Subscription serveAddress(const std::string& address, std::function<void()> open);

  // Any thread but the workspace's own.
  ActiveWindow activeWindow() const;
  // Whether another program than the active one, or a prompt, has the keyboard for itself, as of the last
  // question for the active window or the applications. Main thread.
  bool keyboardIsTaken() const { return grabs_.keyboardIsTaken(); }
  // Another number after each change of the active window or of `keyboardIsTaken`; 0 while one may be on its
  // way, and without a window manager that tells of them. Any thread.
  std::uint64_t stamp() const { return windowManagerTells_ && loop_.hasCaughtUp() ? changes_.load() : 0; }
  // Of the windows that are not this program's the one that was active last; it may be gone.
  xcb_window_t lastForeignWindow() const;
  // Called on the workspace's thread after another window has become active; ask which on another thread.
  // The subscription may end on any thread; no call on another one is under way after.
  Subscription observeActiveWindow(std::function<void()> changed);

 private:
  struct Facts {
    std::int64_t processIdentifier = 0;
    std::string name;
    std::string bundleIdentifier;
    std::string windowClass;
    bool isOwn = false;
  };
  struct Snapshot {
    RunningApplications applications;
    ActiveWindow active;
    xcb_window_t lastForeign = XCB_WINDOW_NONE;
  };

  X11Workspace(std::unique_ptr<XConnection> x, Options options);
  std::shared_ptr<const Snapshot> latest() const;

  // The workspace's thread.
  void handleEvent(const xcb_generic_event_t& event);
  void refresh();
  void publish();
  void findWindowManager();
  xcb_window_t askActiveWindow() const;
  xcb_window_t focusedApplicationWindow() const;
  Facts factsOf(xcb_window_t window);

  Options options_;
  std::unique_ptr<XConnection> x_;
  mutable XEventLoop loop_;
  XEventLoop::Task refreshTask_;
  KeyboardGrabWatch grabs_;

  DesktopFiles desktopFiles_;
  xcb_atom_t activeWindowAtom_;
  xcb_atom_t clientListAtom_;
  xcb_atom_t windowManagerAtom_;
  std::vector<xcb_window_t> windows_;
  std::map<xcb_window_t, Facts> facts_;
  xcb_window_t active_ = XCB_WINDOW_NONE;
  xcb_window_t lastForeign_ = XCB_WINDOW_NONE;

  std::atomic<bool> windowManagerTells_ = false;
  std::atomic<std::uint64_t> changes_ = 1;  // what the server has told of counts as one
  mutable std::mutex mutex_;
  std::shared_ptr<const Snapshot> snapshot_ = std::make_shared<Snapshot>();

  std::map<std::string, std::function<void()>, std::less<>> served_;  // main thread
  mutable std::shared_ptr<const Snapshot> shown_;  // main thread: what runningApplications() has returned

  SharedObservers activeWindowObservers_;
};

}  // namespace quorlo
