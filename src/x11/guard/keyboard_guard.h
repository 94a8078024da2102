#pragma once

#include "x11/guard/server_keyboards.h"
#include "x11/guard/typed_keys_ledger.h"

#include <chrono>
#include <cstdint>
#include <optional>

namespace quorlo {

// Frees the keyboards from a Quorlo that hangs, is stopped or was killed, and delivers what was typed into
// it.
//
// The server tells of every key typed, and passes on what Quorlo reports of it. Both are read a few times a
// second while keys are typed, and not at all while none is: a press without a report is noticed as early as
// if each key woke this process.
class KeyboardGuard {
 public:
  // `quorlo` is a window of the client that has the keyboards grabbed. The descriptor becomes readable when
  // Quorlo ends.
  KeyboardGuard(xcb_connection_t* connection, xcb_window_t quorlo, xcb_atom_t messageType, int lifeline);

  // False when the server lacks what it takes. Then `window` takes Quorlo's reports.
  bool begin();
  xcb_window_t window() const { return window_; }

  // Returns when there is nothing left to guard.
  void run();

 private:
  using Clock = std::chrono::steady_clock;
  using Milliseconds = std::chrono::milliseconds;
  enum class Waking { event, time, lifelineCut };
  enum class Quorlo { hangs, hasEnded };

  // Until keys are typed.
  Waking sleep();
  // While keys are typed; until Quorlo hangs, or no more keys come.
  std::optional<Quorlo> watch();
  Waking wait(bool forEvents, Milliseconds atMost) const;

  // Handles what the server has sent; true when keys were typed.
  bool readEvents();
  bool readMoreEvents();
  void handle(const xcb_generic_event_t& event);
  void handleRawKey(TypedKeysLedger::Key key, std::uint16_t source, std::uint32_t time);
  static Milliseconds since(Clock::time_point moment) {
    return std::chrono::duration_cast<Milliseconds>(Clock::now() - moment);
  }
  Milliseconds waitedForAnswer() const;
  void ask(PressId press);
  bool isAlive() const { return xcb_connection_has_error(connection_) == 0; }

  void takeOver(Quorlo reason);
  void waitUntilItsClientHasEnded() const;
  // Presses what Quorlo has not delivered. Returns the modifiers that are still held.
  std::set<std::uint8_t> deliver(const std::set<std::uint8_t>& modifiers);
  void holdUntilReleased(std::set<std::uint8_t> modifiers);
  void sync() const;

  xcb_connection_t* connection_;
  xcb_window_t quorlo_;
  xcb_atom_t messageType_;
  int lifeline_;
  xcb_window_t root_;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  std::uint8_t inputOpcode_ = 0;
  ServerKeyboards keyboards_;
  TypedKeysLedger ledger_;
  // Of the events read last.
  std::optional<std::uint32_t> latestTime_;
  bool keysWereTyped_ = false;
  std::set<std::uint8_t> released_;
  // One moment by the server's clock and by this program's.
  struct Moment {
    std::uint32_t server;
    Clock::time_point own;
  };
  std::optional<Moment> moment_;
  struct Question {
    PressId press;
    Clock::time_point asked;
  };
  std::optional<Question> question_;  // not answered yet
  Clock::time_point lastReport_;
};

}  // namespace quorlo
