#pragma once

#include "base/shared_observers.h"
#include "base/subscription.h"
#include "x11/connection/client_identity.h"
#include "x11/selection/paste_target.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

class SelectionOffer;

// Knows which pastes have been asked for by a chord and not yet been read by their target, and so which
// contents each reader is to get: a target gets the piece that was on the pasteboard when its chord was
// posted, even if the pasteboard holds something else by now.
//
// A reader that asks for contents (not for the list of targets, a timestamp or a marker) reads its oldest
// paste. One paste may read several targets, and some programs read each of them several times (Chromium
// takes the text four times); others (GTK, Qt, xterm) read once. So the next chord had better wait until the
// paste before is over; where it did not, the same target asked for again is the next paste's read.
// Other programs' reads count for nothing: a clipboard manager asks before the target does.
//
// The first group of operations may be used from any thread, the second is the pasteboard's own.
class PasteTracker {
 public:
  using Clock = std::chrono::steady_clock;
  using Instant = Clock::time_point;
  using PasteId = std::uint64_t;
  using Offer = std::shared_ptr<SelectionOffer>;

  // A target that has not read its piece by then never will.
  static constexpr std::chrono::seconds kPatience{2};
  // This long after a target's last read the next chord for it may be posted.
  static constexpr std::chrono::milliseconds kQuiet{60};
  // A busy target may come back even later: Chromium reads once to see whether it may paste, and again when
  // its page is at it. Until this long after its last visit it is given the same piece, unless the next
  // chord comes first.
  static constexpr std::chrono::milliseconds kLinger{200};

  // A chord has been announced whose target has not been handed its piece, and still may be.
  bool hasUnreadPaste() const;
  // When a target last took contents or a part of them; the epoch if never.
  Instant lastProgress() const;
  // Called on the pasteboard's thread after each change of the two above; hand over to a thread of your
  // own. The subscription may end on any thread; no call on another one is under way after.
  Subscription observe(std::function<void()> changed);

  void announce(const ClientIdentity& target, PasteSelection selection, Offer offer, Instant now);

  struct Reading {
    PasteId paste;
    Offer offer;
  };
  // What a request from the reader is to be answered from; absent when no paste of that program is open:
  // then it gets what everybody gets. Counts as a visit, not yet as having read.
  std::optional<Reading> readingFor(const ClientIdentity& reader, bool fromPrimary, std::string_view target,
                                    Instant now);
  void progressed(PasteId paste, Instant now);  // a part of the contents was taken
  void delivered(PasteId paste, Instant now);   // the contents were taken whole

  bool hasOpenPaste() const;
  // A paste into the program is under way: its next chord had better wait.
  bool isBusy(const ClientIdentity& target, Instant now) const;
  // The program's pastes that have been read are over now.
  void closeDelivered(const ClientIdentity& target);
  bool hasOpenPasteFromPrimary() const;
  // Closes what is over; when the next paste closes or lets the next chord pass.
  std::optional<Instant> closeFinished(Instant now);

 private:
  struct Paste {
    PasteId id;
    ClientIdentity target;
    PasteSelection selection;
    Offer offer;
    Instant announced;
    Instant lastActivity;                      // last time that contents were taken
    Instant lastVisit;                         // last request of any kind
    std::set<std::string, std::less<>> asked;  // content targets requested
    bool delivered = false;
    Instant calmsAt() const;   // the next chord may be posted
    Instant closesAt() const;  // the target is treated as all others
  };
  Paste* find(PasteId paste);

  mutable std::mutex mutex_;
  std::vector<Paste> pastes_;  // the oldest first
  PasteId lastPaste_ = 0;
  Instant lastProgress_{};

  SharedObservers observers_;
};

}  // namespace quorlo
