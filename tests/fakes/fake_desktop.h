#pragma once

#include "base/observers.h"
#include "fakes/fake_main_queue.h"
#include "fakes/fake_pasteboard.h"
#include "platform/accessibility_trust.h"
#include "platform/event_poster.h"
#include "platform/event_tap.h"
#include "platform/front_window.h"
#include "platform/insertion/insertion_target.h"
#include "platform/keyboard_layout.h"
#include "platform/mouse_monitor.h"
#include "platform/pasted_pieces.h"
#include "platform/typed_keys_hold.h"
#include "platform/typing_context.h"
#include "platform/workspace.h"

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorlo {

// An application with one text field that obeys keys and paste.
struct FakeApplication {
  std::shared_ptr<RunningApplication> record;
  std::u16string text;
  std::size_t caret = 0;
  bool isOpen = true;
  std::vector<PasteboardContents> pasted;
  InsertionProfile profile;
  Toolkit toolkit = Toolkit::unknown;

  void receive(KeyCode code, ModifierFlags flags, std::u16string_view characters,
               const FakePasteboard& pasteboard);
  void clear() {
    text.clear();
    caret = 0;
  }
};

// Everything around the program: applications with text fields, a keyboard that somebody types on, a
// mouse, a pasteboard and a clock. It stands behind the ports that deal with keys and applications.
// Keystrokes in, text out.
class FakeDesktop : public EventTap,
                    public EventPoster,
                    public InsertionTarget,
                    public TypedKeysHold,
                    public PastedPieces,
                    public MouseMonitor,
                    public KeyboardLayout,
                    public AccessibilityTrust,
                    public TypingContext,
                    public FrontWindow,
                    public Workspace {
 public:
  FakeMainQueue queue;
  FakePasteboard pasteboard{queue};

  FakeDesktop() { launch("org.example.Editor"); }

  // The user's side.

  FakeApplication& launch(std::optional<std::string> bundleIdentifier);
  // Makes the application the active one; null for none.
  void activate(FakeApplication* application);
  // No application is active then.
  void close(FakeApplication& application);
  FakeApplication& front() { return *active_; }
  const std::u16string& text() { return front().text; }

  // Types each character; "\b" is Backspace, "\n" and "\r" Return, "\t" Tab, "\x1b" Escape.
  void type(std::u16string_view characters);
  void press(KeyCode code, ModifierFlags flags = 0, std::u16string characters = {});
  void clickMouse(MouseButton button = MouseButton::left);
  // Types and lets time pass until everything that follows is done.
  void typeAndWait(std::u16string_view characters) {
    type(characters);
    queue.settle();
  }

  // The machine's side.

  void grantTrust(bool trusted) { trusted_ = trusted; }
  void refuseTaps(bool refuse) { refusesTaps_ = refuse; }
  void setObstacle(std::optional<TypingObstacle> obstacle) {
    obstacle_ = obstacle;
    ++stamp_;
  }
  // How many keys the tap's callback was asked about.
  int keysAskedAbout() const { return keysAskedAbout_; }
  void timeOutTap();
  // Types past the tap, which is told.
  void typeUnseen(std::u16string_view characters);
  bool hasTap() const { return port_ != nullptr; }
  bool isTapEnabled() const { return port_ != nullptr && port_->enabled; }
  bool isWatchingMouse() const { return static_cast<bool>(mouseHandler_); }
  bool holdsKeys() const { return holds_ > 0; }
  // Another process reads for the applications.
  void leavePiecesUnread() { piecesStayUnread_ = true; }
  // Applications take so long from the paste chord to the read; other keys have their effect at once.
  void delayReading(Seconds delay) { readingDelay_ = delay; }
  void removeKeyOf(char16_t character) { keysRemoved_ += character; }
  // Ends all holds, as an adapter does when nothing goes on for too long.
  void breakHold();

  struct Post {
    KeyCode code;
    ModifierFlags flags;
    PostLocation location;
    int count;
    bool operator==(const Post&) const = default;
  };
  // How paste() stands among the posts.
  static constexpr Post kPaste{0xFFFF, 0, PostLocation::session, 1};
  std::vector<Post> posts;
  std::vector<std::string> openedUrls;
  std::vector<InstalledApplication> installed;

  // Ports.

  std::unique_ptr<Port> create(Callback callback, void* userInfo) override;
  void paste() override;
  void postKey(KeyCode code, ModifierFlags flags, PostLocation location, int count = 1) override;
  bool canType(std::u16string_view text) const override;
  void typeText(std::u16string_view text) override;
  InsertionProfile profile() const override {
    return active_ != nullptr ? active_->profile : InsertionProfile();
  }
  Toolkit toolkit() const override { return active_ != nullptr ? active_->toolkit : Toolkit::unknown; }
  std::unique_ptr<Hold> begin() override;
  bool lastWasRead() const override { return !piecesStayUnread_ && unreadPieces_ == 0; }
  void whenRead(Seconds patience, std::function<void()> next) override;
  Subscription observeMouseDown(std::function<void(MouseButton)> handler) override;
  std::optional<KeyCode> keyCodeForNamedKey(NamedKey name) const override;
  std::u16string labelOfKey(KeyCode code) const override { return code == key::kV ? u"V" : u""; }
  // The native numbers of the fake are the program's own.
  std::optional<Shortcut> shortcutOf(const NativeKeyPress& press) const override {
    return Shortcut{static_cast<KeyCode>(press.keycode), press.modifiers};
  }
  bool isProcessTrusted() const override { return trusted_; }
  std::vector<AccessibilityObstacle> obstacles() const override {
    if (trusted_) return {};
    return {AccessibilityObstacle::noXtest};
  }
  FrontWindow::Id current() const override { return reinterpret_cast<FrontWindow::Id>(active_); }
  bool isStill(FrontWindow::Id window) const override;
  std::optional<TypingObstacle> obstacle() const override { return obstacle_; }
  std::uint64_t stamp() const override { return stamp_; }
  Subscription observeObstacles(std::function<void()> changed) override {
    return obstacleObservers_.add(std::move(changed));
  }
  const RunningApplications& runningApplications() const override { return running_; }
  std::vector<InstalledApplication> installedApplications() const override { return installed; }
  const std::string& ownBundleIdentifier() const override { return own_; }
  bool openURL(std::string_view url) override {
    openedUrls.emplace_back(url);
    return true;
  }

 private:
  struct TapPort : Port {
    TapPort(FakeDesktop& d, Callback c, void* info) : desktop(d), callback(c), userInfo(info) {
      desktop.port_ = this;
    }
    ~TapPort() override { desktop.port_ = nullptr; }
    void enable() override { enabled = true; }
    bool isEnabled() const override { return enabled; }
    void passUnasked(std::function<bool(const KeyDownEvent&)> quiet) override {
      needsNoVerdict = std::move(quiet);
    }
    std::vector<KeyDownEvent> takePassedKeys() override { return std::exchange(passed, {}); }
    TapVerdict judge(const KeyDownEvent& event);

    FakeDesktop& desktop;
    Callback callback;
    void* userInfo;
    bool enabled = true;
    std::function<bool(const KeyDownEvent&)> needsNoVerdict;
    std::vector<KeyDownEvent> passed;
  };

  struct HeldKeys;

  void press(const KeyDownEvent& posted, PostLocation location);
  void deliver(const KeyDownEvent& event);
  void receive(const KeyDownEvent& event);
  void receiveLater(const KeyDownEvent& event);
  void runWhenRead();
  void deliverHeldKeys();
  void noteProgress(Seconds pause = Seconds(0));
  void watchHold();

  std::vector<std::unique_ptr<FakeApplication>> applications_;
  FakeApplication* active_ = nullptr;
  RunningApplications running_;
  TapPort* port_ = nullptr;
  std::function<void(MouseButton)> mouseHandler_;
  std::deque<KeyDownEvent> held_;
  int holds_ = 0;
  int holdGeneration_ = 0;  // holds of an earlier one have been ended
  MainQueue::Instant lastProgress_{};
  std::optional<KeyDownEvent> judging_;
  std::optional<KeyDownEvent> trigger_;  // swallowed and not yet kept
  bool trusted_ = true;
  bool piecesStayUnread_ = false;
  Seconds readingDelay_{0};
  int unreadPieces_ = 0;
  std::vector<std::function<void()>> whenRead_;
  int readWaits_ = 0;  // those that have ended
  std::u16string keysRemoved_;
  Observers<> obstacleObservers_;
  std::optional<TypingObstacle> obstacle_;
  std::uint64_t stamp_ = 1;
  int keysAskedAbout_ = 0;
  bool refusesTaps_ = false;
  std::string own_ = "org.quorlo.Quorlo";
};

}  // namespace quorlo
