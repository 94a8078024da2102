#pragma once

#include "base/shared_observers.h"
#include "base/subscription.h"
#include "x11/connection/client_identity.h"
#include "x11/selection/paste_target.h"
#include "x11/selection/reader_habits.h"

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
//
// A paste is awaited for two seconds: so long are typed keys held, and new contents not announced. After
// that it is late, but still served: a busy target must never get the user's own clipboard instead of the
// piece. A late paste ends when it is read or closed.
//
// Some programs have another process read for them: compatibility layers, viewers of other desktops. Such a
// read ends the wait. Clipboard managers do not count: they read when the contents change.
//
// The first group of operations may be used from any thread, the second is the pasteboard's own.
class PasteTracker {
 public:
  using Clock = std::chrono::steady_clock;
  using Instant = Clock::time_point;
  using PasteId = std::uint64_t;
  using Offer = std::shared_ptr<SelectionOffer>;

  // No application reads sooner after its chord.
  static constexpr std::chrono::milliseconds kEarliestRead{5};
  // This long after a target's last read the next chord for it may be posted.
  static constexpr std::chrono::milliseconds kQuiet{60};
  // A busy target may come back even later: Chromium reads once to see whether it may paste, and again when
  // its page is at it. Until this long after its last visit it is given the same piece, unless the next
  // chord comes first.
  static constexpr std::chrono::milliseconds kLinger{200};
  // A program that is still asking so long after its first read is not pasting.
  static constexpr std::chrono::seconds kLongestRead{2};

  // A chord has been announced whose target has not been handed its piece, and is awaited to read it.
  bool hasUnreadPaste() const;
  // The target of the newest chord has been handed its piece. False when there was no chord yet.
  bool lastPasteWasRead() const;
  PasteId lastPaste() const;  // 0 when there was no chord yet
  // The keys and the paste that follow will not be kept back any longer for this paste and those before it,
  // except for one that is being read. Each is served as before.
  void stopAwaiting(PasteId last);
  // When a target last took contents or a part of them; the epoch if never.
  Instant lastProgress() const;
  // Called on the pasteboard's thread after each change of the two above; hand over to a thread of your
  // own. The subscription may end on any thread except inside the callback; no call is under way after.
  Subscription observe(std::function<void()> changed);

  struct Target {
    ClientIdentity client;
    xcb_window_t window = XCB_WINDOW_NONE;
  };
  void announce(const Target& target, PasteSelection selection, Offer offer, Instant now);
  // Other programs have been told of new contents.
  void contentsChanged(Instant now);

  struct Reading {
    PasteId paste;  // 0 when another process reads for the target
    Offer offer;
  };
  // What a request from the reader is to be answered from; absent when it is for no open paste: then it
  // gets what all others get. Counts as a visit, not yet as having read.
  std::optional<Reading> readingFor(const ClientIdentity& reader, bool fromPrimary, std::string_view target,
                                    Instant now);
  void progressed(PasteId paste, Instant now);  // a part of the contents was taken
  void delivered(PasteId paste, Instant now);   // the contents were taken whole

  // A piece is kept for a target.
  bool hasOpenPaste() const;
  bool hasOpenPasteFromPrimary() const;
  // A paste is awaited, or its target may come back for more.
  bool hasPasteUnderWay() const;
  // A paste into the program is under way: its next chord had better wait.
  bool isBusy(const ClientIdentity& target, Instant now) const;
  // The program's pastes that have been read are over now.
  void closeDelivered(const ClientIdentity& target);
  // Closes what is over; when the next paste closes, becomes late or lets the next chord pass.
  std::optional<Instant> closeFinished(Instant now);

  struct Late {
    PasteId paste;
    Target target;
  };
  std::vector<Late> latePastes() const;
  void close(PasteId paste);
  // The user begins a paste of his own. A target that has asked for anything since its chord has not ignored
  // it.
  void closeIgnored(PasteId paste);
  // The selection is another program's now, which also serves the targets of late pastes.
  void closeLate(bool fromPrimary);

 private:
  struct Paste {
    PasteId id;
    Target target;
    PasteSelection selection;
    Offer offer;
    Instant announced;
    std::chrono::milliseconds patience;
    Instant lastActivity;                      // last time that contents were taken
    Instant lastVisit;                         // last request of any kind
    std::set<std::string, std::less<>> asked;  // content targets requested
    std::optional<Instant> delivered;          // for the first time
    bool isLate = false;
    bool isGivenUp = false;  // not awaited, although it may still be in time
    bool isInTime() const { return !delivered && !isLate; }
    bool isAwaited() const { return isInTime() && !isGivenUp; }
    bool isBegun() const { return lastActivity != announced; }
    Instant calmsAt() const;   // the next chord may be posted
    Instant closesAt() const;  // the target is treated as all others
  };
  using Pastes = std::vector<Paste>;

  Pastes::iterator pasteReadBy(const ClientIdentity& reader, bool fromPrimary, std::string_view target);
  std::optional<Reading> readingForTarget(const ClientIdentity& reader, bool fromPrimary, Instant now);
  Paste* find(PasteId paste);

  mutable std::mutex mutex_;
  Pastes pastes_;  // the oldest first
  PasteId lastPaste_ = 0;
  PasteId lastDelivered_ = 0;
  Instant lastProgress_{};
  ReaderHabits habits_;

  SharedObservers observers_;
};

}  // namespace quorlo
