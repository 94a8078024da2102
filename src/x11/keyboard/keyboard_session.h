#pragma once

#include "base/result.h"
#include "platform/main_queue.h"
#include "platform/shortcut.h"
#include "x11/connection/x_connection.h"
#include "x11/connection/x_event_loop.h"
#include "x11/guard/guard_keeper.h"
#include "x11/keyboard/key_stream.h"
#include "x11/keyboard/keyboard_link.h"
#include "x11/keyboard/tap_conversation.h"
#include "x11/keyboard/work_breaker.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace quorlo {

struct KeyboardOptions {
  std::string display;                   // as in DISPLAY; empty for that variable
  std::filesystem::path guardProgram;    // quorlo-keyboard-guard
  std::function<void()> connectionLost;  // the X server went away; called once, on the main thread
};

// One connection to the X server's keyboards with the thread that serves it. Lives until the connection is
// lost or the program ends. Main thread, but for what runs on its own thread.
class KeyboardSession : KeyStream::Judge {
 public:
  // Called on the session's thread.
  struct Notices {
    std::function<void()> lost;
    std::function<void()> watchingChanged;  // what the tap has of the keyboards
  };

  static Result<std::unique_ptr<KeyboardSession>> open(const KeyboardOptions& options, Notices notices);
  ~KeyboardSession() override;

  const std::vector<AccessibilityObstacle>& obstacles() const { return link_.obstacles(); }

  // False when it could not be done in time; nothing is grabbed later then. Without a keyboard that can be
  // grabbed the tap waits for one.
  bool beginTap(std::shared_ptr<TapConversation> conversation);
  void endTap();
  bool isTapping() const { return tapping_; }

  // Combinations to pass on without asking.
  void setHotKeys(std::set<Shortcut> hotKeys);
  // Passes all keys on without asking.
  void setScreenIsLocked(bool isLocked) { screenIsLocked_ = isLocked; }

  HoldId beginHold();
  // False when the hold has ended.
  bool keepTrigger(HoldId hold);
  void endHold();
  // A key was posted or the pasteboard read; for the length of the pause no more of it is expected.
  void noteProgress(Seconds pause = Seconds(0));

  bool hasKeyboard();
  // The tap has no keyboard, and takes the first that is plugged in or let go by another program.
  bool waitsForKeyboard() const { return tapping_ && watching_ == Watching::waits; }
  // The tap has let the keyboards go, since it had endless work with them; it is to be ended.
  bool isOverworked() const { return tapping_ && watching_ == Watching::overworked; }

  // Posts keys: calls with the way to the applications, on which none of the user's modifiers is held.
  void post(const std::function<void(KeyStream::Output&)>& keys);

  // Counts the changes of the keyboard map.
  std::uint64_t mapGeneration() const { return mapGeneration_; }
  std::optional<KeyMap> loadMap();
  std::uint32_t currentLayout();

 private:
  static constexpr std::chrono::seconds kHoldPatience{2};
  static constexpr std::chrono::milliseconds kPatience{2000};
  static constexpr std::chrono::milliseconds kFirstPause{50};
  static constexpr std::chrono::milliseconds kLongestPause{10'000};

  enum class Watching { nothing, waits, keyboards, overworked };

  KeyboardSession(std::unique_ptr<XConnection> connection, KeyboardOptions options);
  void start(Notices notices);

  // On the session's thread.
  TapVerdict keyPressed(const KeyDownEvent& event) override;
  void keyRepeated(const KeyDownEvent& event) override;
  void handleEvent(const xcb_generic_event_t& event);
  void handleKey(const KeyTyped& typed);
  // What of the session's keyboard is to be looked at again.
  struct Pending {
    bool map = false;
    bool controls = false;
    bool locks = false;
    bool any() const { return map || controls || locks; }
  };
  void followLater(bool Pending::*part);
  void followSession();
  void followControls();
  void readMap();
  // Whether it is nobody's typing.
  bool isPassedUnseen(const KeyDownEvent& event) const;
  void startWatching(std::shared_ptr<TapConversation> conversation);
  void stopWatching();
  void stopOverworked();
  void setWatching(Watching watching);
  void takeKeyboards();
  void takeNewKeyboards();
  void lookForKeyboards(std::chrono::milliseconds pause);
  void handleChange(const KeyboardChange& change);
  // Runs work that no key has caused, and lets the keyboards go when it does not end.
  template <class Work>
  void limited(Work work) {
    const auto begin = WorkBreaker::Clock::now();
    work();
    if (!breaker_.allows(begin, WorkBreaker::Clock::now())) stopOverworked();
  }
  void watchHold();
  // Another thread has waited for a reply, which may have brought events along.
  void wake() {
    loop_.post([] {});
  }

  std::unique_ptr<XConnection> connection_;
  KeyboardOptions options_;
  KeyboardLink link_;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  xcb_atom_t guardMessage_ = XCB_ATOM_NONE;
  std::optional<KeyStream> stream_;                // present unless there is an obstacle
  std::optional<GuardKeeper> guard_;               // on the thread; present with the stream
  std::shared_ptr<TapConversation> conversation_;  // on the thread
  std::set<Shortcut> hotKeys_;                     // on the thread
  bool tapping_ = false;                           // main thread
  bool grabbing_ = false;                          // on the thread
  bool watchingHold_ = false;                      // on the thread
  bool isLooking_ = false;                         // on the thread
  Pending pending_;                                // on the thread
  WorkBreaker breaker_;                            // on the thread
  Notices notices_;
  PressNumbering pressNumbering_;  // on the thread
  std::atomic<bool> screenIsLocked_ = false;
  std::atomic<Watching> watching_ = Watching::nothing;
  std::atomic<std::uint64_t> mapGeneration_ = 1;
  std::atomic<std::chrono::steady_clock::time_point> lastProgress_{};  // the end of an announced pause
  XEventLoop loop_;  // the last: its thread uses all of the others
};

}  // namespace quorlo
