#pragma once

#include "x11/guard/press_id.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace quorlo {

// What was typed on the physical keyboards and what Quorlo has done with it, in the server's order and time.
class TypedKeysLedger {
 public:
  using Keys = std::set<std::pair<std::uint16_t, std::uint8_t>>;  // device and keycode

  struct Key {
    bool isPress;
    std::uint16_t device;
    std::uint8_t keycode;
  };

  // Keys that are down before the first one is typed.
  void begin(Keys down) { down_ = std::move(down); }

  void typed(Key key, std::uint32_t time);
  // The key that this device reported last went to the applications by itself.
  void passedByItself(Key key);
  void report(PressReport report, PressId press);
  // The server's time as of now.
  void setTime(std::uint32_t time) { time_ = time; }

  // The first press that Quorlo gave no sign about.
  std::optional<PressId> unanswered() const;
  // The press that Quorlo has to be asked about: that one, or the first that it keeps for later.
  std::optional<PressId> owed() const;
  // Since when Quorlo owes the first sign: a program that works through a backlog gives one with each press.
  std::uint32_t waitingSince() const;

  // What Quorlo has not delivered: begins with a press.
  std::vector<Key> undelivered() const;
  // The keys that were down before the first of those.
  const Keys& downBefore() const { return down_; }
  Keys downNow() const;

 private:
  struct Entry {
    Key key;
    PressId id;
    bool isTaken = false;
    bool passedByItself = false;
  };

  std::size_t countUpTo(PressId press) const;
  void dropSettled();
  void dropFirst();

  std::deque<Entry> entries_;
  Keys down_;  // before the first entry
  PressNumbering numbering_;
  std::uint32_t time_ = 0;
  std::uint32_t lastSign_ = 0;
  bool anySign_ = false;
};

// Times wrap.
inline bool isLater(std::uint32_t time, std::uint32_t other) {
  return static_cast<std::int32_t>(time - other) > 0;
}

}  // namespace quorlo
