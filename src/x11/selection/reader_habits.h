#pragma once

#include "x11/connection/client_identity.h"

#include <chrono>
#include <map>
#include <vector>

namespace quorlo {

// What experience tells of the programs that read the clipboard. Not thread-safe.
class ReaderHabits {
 public:
  using Instant = std::chrono::steady_clock::time_point;

  // A paste is awaited so long; after two that a program left unread only briefly, until it reads again.
  static constexpr std::chrono::milliseconds kPatience{2000};
  static constexpr std::chrono::milliseconds kShortPatience{300};
  // A clipboard manager reads new contents within this time.
  static constexpr std::chrono::milliseconds kManagersTime{1000};

  void contentsChanged(Instant now) { contentsChanged_ = now; }
  // The reader took contents that no chord had asked for.
  void readUnasked(const ClientIdentity& reader, Instant now);
  // Reads because contents changed, not because of a chord.
  bool isClipboardManager(const ClientIdentity& reader) const;

  std::chrono::milliseconds patienceWith(const ClientIdentity& target) const;
  void leftUnread(const ClientIdentity& target) { ++unread_[keyOf(target)]; }
  void hasRead(const ClientIdentity& target) { unread_.erase(keyOf(target)); }

 private:
  static std::int64_t keyOf(const ClientIdentity& program);

  Instant contentsChanged_{};
  std::vector<ClientIdentity> managers_;
  std::map<std::int64_t, int> unread_;  // pastes in a row, by program
};

}  // namespace quorlo
