#include "x11/desktop/x11_desktop.h"

#include "base/log.h"
#include "platform/insertion/insertion_table.h"
#include "platform/main_queue.h"
#include "x11/connection/x_connection.h"
#include "x11/desktop/x11_accessibility_trust.h"
#include "x11/desktop/x11_front_window.h"
#include "x11/desktop/x11_hot_key_center.h"
#include "x11/desktop/x11_insertion_target.h"
#include "x11/desktop/x11_mouse_monitor.h"
#include "x11/desktop/x11_target_focus.h"
#include "x11/desktop/x11_workspace.h"
#include "x11/keyboard/keyboard_service.h"
#include "x11/keyboard/x11_event_poster.h"
#include "x11/keyboard/x11_event_tap.h"
#include "x11/keyboard/x11_keyboard_layout.h"
#include "x11/keyboard/x11_typed_keys_hold.h"
#include "x11/selection/x11_pasteboard.h"
#include "x11/selection/x11_pasted_pieces.h"

#include <algorithm>
#include <atomic>
#include <string>
#include <string_view>
#include <utility>

namespace quorlo {

namespace {

std::string_view reason(AccessibilityObstacle obstacle) {
  switch (obstacle) {
    case AccessibilityObstacle::displayIsLost:
      return "The connection to the X server is lost.";
    case AccessibilityObstacle::waylandSession:
      return "In a Wayland session keys can be neither watched nor pressed.";
    case AccessibilityObstacle::noXInput2:
      return "The X server lacks XInput 2: no abbreviation can be seen.";
    case AccessibilityObstacle::noXtest:
      return "The X server lacks XTEST: no key can be pressed.";
    case AccessibilityObstacle::noXkb:
      return "The X server lacks XKB: keys cannot be read.";
    case AccessibilityObstacle::keyboardsAreTaken:
      return "Another program has grabbed the keyboards.";
    case AccessibilityObstacle::noKeyboard:
      return "There is no keyboard at the moment.";
    case AccessibilityObstacle::watchingIsInterrupted:
      return "The keyboards are not watched at the moment.";
  }
  return "";
}

// Several connections notice the end of one server; the program hears of it once.
class LossReport {
 public:
  LossReport(MainQueue& queue, std::function<void()> report) : queue_(queue), report_(std::move(report)) {}

  // Any thread.
  static std::function<void()> reporter(const std::shared_ptr<LossReport>& shared) {
    return [shared] {
      if (shared->told_.exchange(true)) return;
      shared->queue_.run([weak = std::weak_ptr(shared)] {
        if (const auto alive = weak.lock(); alive && alive->report_) alive->report_();
      });
    };
  }

 private:
  MainQueue& queue_;
  std::function<void()> report_;
  std::atomic<bool> told_ = false;
};

}  // namespace

struct X11Desktop::Parts {
  std::shared_ptr<LossReport> loss;
  std::unique_ptr<XConnection> x;
  std::unique_ptr<X11Workspace> workspace;
  std::unique_ptr<X11InsertionTarget> target;
  std::unique_ptr<X11Pasteboard> pasteboard;
  std::unique_ptr<X11TargetFocus> focus;
  std::unique_ptr<X11FrontWindow> frontWindow;
  std::unique_ptr<X11MouseMonitor> mouse;
  std::unique_ptr<KeyboardService> keyboard;
  std::unique_ptr<X11AccessibilityTrust> trust;
  std::unique_ptr<X11KeyboardLayout> layout;
  std::unique_ptr<X11HotKeyCenter> hotKeys;
  std::unique_ptr<X11EventTap> tap;
  std::unique_ptr<X11EventPoster> poster;
  std::unique_ptr<X11TypedKeysHold> hold;
  std::unique_ptr<X11PastedPieces> pieces;
  Subscription activations;
};

Result<std::unique_ptr<X11Desktop>> X11Desktop::connect(const Options& options, MainQueue& queue) {
  auto x = XConnection::open(options.display);
  if (!x) return x.error();
  auto parts = std::make_unique<Parts>();
  auto& p = *parts;
  p.x = std::move(x).value();
  p.loss = std::make_shared<LossReport>(queue, options.connectionLost);
  const auto lost = LossReport::reporter(p.loss);
  const std::string& display = p.x->displayName();

  X11Workspace::Options workspaceOptions;
  workspaceOptions.display = display;
  workspaceOptions.connectionLost = lost;
  auto workspace = X11Workspace::connect(std::move(workspaceOptions));
  if (!workspace) return workspace.error();
  p.workspace = std::move(workspace).value();
  p.focus = std::make_unique<X11TargetFocus>(*p.x, *p.workspace, queue);
  p.frontWindow = std::make_unique<X11FrontWindow>(*p.x, *p.workspace);

  p.target = std::make_unique<X11InsertionTarget>([&p] { return p.workspace->activeWindow(); },
                                                  options.insertionTable);
  const auto pastesFromPrimary = [&p] { return p.target->profile().pastesSelection; };
  const auto ignored = [&queue, &p, tell = options.pieceWasIgnored,
                        weak = std::weak_ptr(p.loss)](xcb_window_t window) {
    queue.run([&p, tell, weak, window] {
      if (weak.expired() || !tell) return;
      const auto active = p.workspace->activeWindow();
      if (active.window != window) return;
      const auto& running = p.workspace->runningApplications();
      const auto application = std::ranges::find_if(running, [](const auto& each) { return each->isActive; });
      const auto& identifier = active.bundleIdentifier.empty() ? active.windowClass : active.bundleIdentifier;
      tell(identifier, application != running.end() ? (*application)->localizedName : identifier);
    });
  };
  auto pasteboard = X11Pasteboard::connect(display, queue, {pastesFromPrimary, lost, {}, ignored});
  if (!pasteboard) return pasteboard.error();
  p.pasteboard = std::move(pasteboard).value();

  auto mouse = X11MouseMonitor::connect({display, lost}, queue);
  if (!mouse) return mouse.error();
  p.mouse = std::move(mouse).value();

  auto keyboard = KeyboardService::start({display, options.guardProgram, lost}, queue);
  if (!keyboard) return keyboard.error();
  p.keyboard = std::move(keyboard).value();
  for (const auto obstacle : p.keyboard->obstacles()) {
    logWarning("WARNING: #x11dT1; " + std::string(reason(obstacle)));
  }

  p.trust = std::make_unique<X11AccessibilityTrust>(*p.x, *p.keyboard);
  p.layout = std::make_unique<X11KeyboardLayout>(*p.keyboard);
  auto hotKeys = X11HotKeyCenter::connect({display, lost}, queue, *p.keyboard, *p.layout);
  if (!hotKeys) return hotKeys.error();
  p.hotKeys = std::move(hotKeys).value();
  p.tap = std::make_unique<X11EventTap>(*p.keyboard);
  p.poster = std::make_unique<X11EventPoster>(*p.keyboard, *p.target,
                                              [&p](const PasteTarget& target, PasteSelection selection) {
                                                p.pasteboard->pasteWillBePosted(target, selection);
                                              });
  p.hold = std::make_unique<X11TypedKeysHold>(*p.keyboard, queue, p.pasteboard->pasteTracker());
  p.pieces = std::make_unique<X11PastedPieces>(p.pasteboard->pasteTracker(), queue);
  p.activations = p.workspace->observeActiveWindow([&queue, &p, weak = std::weak_ptr(p.loss)] {
    queue.run([&p, weak] {
      if (!weak.expired() && p.workspace->activeWindow().isOwn) p.hold->ownWindowBecameActive();
    });
  });
  return std::unique_ptr<X11Desktop>(new X11Desktop(std::move(parts)));
}

X11Desktop::X11Desktop(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}
X11Desktop::~X11Desktop() = default;

const std::string& X11Desktop::displayName() const {
  return parts_->x->displayName();
}
EventTap& X11Desktop::eventTap() {
  return *parts_->tap;
}
EventPoster& X11Desktop::eventPoster() {
  return *parts_->poster;
}
InsertionTarget& X11Desktop::insertionTarget() {
  return *parts_->target;
}
TypedKeysHold& X11Desktop::typedKeysHold() {
  return *parts_->hold;
}
PastedPieces& X11Desktop::pastedPieces() {
  return *parts_->pieces;
}
MouseMonitor& X11Desktop::mouseMonitor() {
  return *parts_->mouse;
}
KeyboardLayout& X11Desktop::keyboardLayout() {
  return *parts_->layout;
}
HotKeyCenter& X11Desktop::hotKeyCenter() {
  return *parts_->hotKeys;
}
void X11Desktop::setScreenIsLocked(bool isLocked) {
  parts_->keyboard->setScreenIsLocked(isLocked);
}
bool X11Desktop::keyboardIsTaken() const {
  return parts_->workspace->keyboardIsTaken();
}
std::uint64_t X11Desktop::typingStamp() const {
  return parts_->workspace->stamp();
}
AccessibilityTrust& X11Desktop::accessibilityTrust() {
  return *parts_->trust;
}
Workspace& X11Desktop::workspace() {
  return *parts_->workspace;
}
Subscription X11Desktop::serveAddress(const std::string& address, std::function<void()> open) {
  return parts_->workspace->serveAddress(address, std::move(open));
}
Pasteboard& X11Desktop::pasteboard() {
  return *parts_->pasteboard;
}
TargetFocus& X11Desktop::targetFocus() {
  return *parts_->focus;
}
FrontWindow& X11Desktop::frontWindow() {
  return *parts_->frontWindow;
}

}  // namespace quorlo
