#include "x11/selection/paste_tracker.h"

#include "x11/selection/selection_offer.h"

#include <algorithm>

namespace quorlo {

PasteTracker::Instant PasteTracker::Paste::calmsAt() const {
  if (delivered) return lastActivity + kQuiet;
  return lastActivity + (isBegun() ? ReaderHabits::kPatience : patience);
}

PasteTracker::Instant PasteTracker::Paste::closesAt() const {
  if (!delivered) return Instant::max();
  return std::max(calmsAt(), std::min(lastVisit + kLinger, *delivered + kLongestRead));
}

bool PasteTracker::hasUnreadPaste() const {
  const std::lock_guard lock(mutex_);
  return std::ranges::any_of(pastes_, &Paste::isAwaited);
}

bool PasteTracker::lastPasteWasRead() const {
  const std::lock_guard lock(mutex_);
  return lastPaste_ != 0 && lastDelivered_ == lastPaste_;
}

PasteTracker::PasteId PasteTracker::lastPaste() const {
  const std::lock_guard lock(mutex_);
  return lastPaste_;
}

void PasteTracker::stopAwaiting(PasteId last) {
  {
    const std::lock_guard lock(mutex_);
    for (auto& paste : pastes_) {
      if (paste.id <= last && !paste.isBegun()) paste.isGivenUp = true;
    }
  }
  observers_.notify();
}

PasteTracker::Instant PasteTracker::lastProgress() const {
  const std::lock_guard lock(mutex_);
  return lastProgress_;
}

Subscription PasteTracker::observe(std::function<void()> changed) {
  return observers_.add(std::move(changed));
}

void PasteTracker::announce(const Target& target, PasteSelection selection, Offer offer, Instant now) {
  {
    const std::lock_guard lock(mutex_);
    const auto patience = habits_.patienceWith(target.client);
    pastes_.push_back(
        {++lastPaste_, target, selection, std::move(offer), now, patience, now, now, {}, std::nullopt});
  }
  observers_.notify();
}

void PasteTracker::contentsChanged(Instant now) {
  const std::lock_guard lock(mutex_);
  habits_.contentsChanged(now);
}

std::optional<PasteTracker::Reading> PasteTracker::readingFor(const ClientIdentity& reader, bool fromPrimary,
                                                              std::string_view target, Instant now) {
  closeFinished(now);
  const bool isContent = !isProtocolTarget(target) && !isMarkerTarget(target);
  const std::lock_guard lock(mutex_);
  const auto paste = pasteReadBy(reader, fromPrimary, target);
  if (paste == pastes_.end()) {
    return isContent ? readingForTarget(reader, fromPrimary, now) : std::nullopt;
  }
  paste->lastVisit = now;
  if (isContent) {
    const bool isNew = paste->asked.emplace(target).second;
    if (paste->delivered && isNew) paste->lastActivity = now;
  }
  return Reading{paste->id, paste->offer};
}

// The paste that a request of its target's belongs to. Ends those before that have been read.
PasteTracker::Pastes::iterator PasteTracker::pasteReadBy(const ClientIdentity& reader, bool fromPrimary,
                                                         std::string_view target) {
  const bool isContent = !isProtocolTarget(target) && !isMarkerTarget(target);
  const auto isReaders = [&](const Paste& paste) {
    return paste.target.client.isSameProgramAs(reader) &&
           (!fromPrimary || paste.selection == PasteSelection::clipboardAndPrimary);
  };
  auto paste = std::ranges::find_if(pastes_, isReaders);
  while (paste != pastes_.end() && paste->delivered) {
    const auto next = std::find_if(paste + 1, pastes_.end(), isReaders);
    if (next == pastes_.end()) break;
    // A target that asks what there is before it asks for one of them must be told of the piece that it
    // will be given.
    const bool isOver = isContent ? paste->asked.contains(target)
                                  : target == "TARGETS" && !paste->offer->hasSameTargetsAs(*next->offer);
    if (!isOver) break;
    const auto nextId = next->id;
    pastes_.erase(paste);
    paste = std::ranges::find(pastes_, nextId, &Paste::id);
  }
  return paste;
}

// Another process may read for the target. The piece is still kept for the target itself, in case that it
// was another program's read after all.
std::optional<PasteTracker::Reading> PasteTracker::readingForTarget(const ClientIdentity& reader,
                                                                    bool fromPrimary, Instant now) {
  const auto paste = std::ranges::find_if(pastes_, &Paste::isInTime);
  if (paste == pastes_.end() || now < paste->announced + kEarliestRead) {
    habits_.readUnasked(reader, now);
    return std::nullopt;
  }
  const bool targetIsReading = paste->lastVisit != paste->announced;
  const bool isFromThere = !fromPrimary || paste->selection == PasteSelection::clipboardAndPrimary;
  if (habits_.isClipboardManager(reader) || targetIsReading || !isFromThere) return std::nullopt;
  paste->isLate = true;
  lastDelivered_ = std::max(lastDelivered_, paste->id);
  habits_.hasRead(paste->target.client);
  return Reading{0, paste->offer};
}

void PasteTracker::progressed(PasteId paste, Instant now) {
  {
    const std::lock_guard lock(mutex_);
    lastProgress_ = now;
    if (auto* found = find(paste)) found->lastActivity = now;
  }
  observers_.notify();
}

void PasteTracker::delivered(PasteId paste, Instant now) {
  {
    const std::lock_guard lock(mutex_);
    lastProgress_ = now;
    lastDelivered_ = std::max(lastDelivered_, paste);
    if (auto* found = find(paste); found != nullptr && !found->delivered) {
      found->lastActivity = now;
      found->delivered = now;
      found->isLate = false;
      habits_.hasRead(found->target.client);
    }
  }
  observers_.notify();
}

bool PasteTracker::hasOpenPaste() const {
  const std::lock_guard lock(mutex_);
  return !pastes_.empty();
}

bool PasteTracker::hasPasteUnderWay() const {
  const std::lock_guard lock(mutex_);
  return std::ranges::any_of(pastes_, [](const Paste& paste) { return !paste.isLate; });
}

bool PasteTracker::isBusy(const ClientIdentity& target, Instant now) const {
  const std::lock_guard lock(mutex_);
  return std::ranges::any_of(pastes_, [&](const Paste& paste) {
    const bool keepsBack = paste.delivered || paste.isAwaited();
    return keepsBack && paste.target.client.isSameProgramAs(target) && paste.calmsAt() > now;
  });
}

void PasteTracker::closeDelivered(const ClientIdentity& target) {
  const std::lock_guard lock(mutex_);
  std::erase_if(pastes_, [&](const Paste& paste) {
    return paste.delivered && paste.target.client.isSameProgramAs(target);
  });
}

bool PasteTracker::hasOpenPasteFromPrimary() const {
  const std::lock_guard lock(mutex_);
  return std::ranges::any_of(
      pastes_, [](const Paste& paste) { return paste.selection == PasteSelection::clipboardAndPrimary; });
}

std::optional<PasteTracker::Instant> PasteTracker::closeFinished(Instant now) {
  bool someBecameLate = false;
  std::optional<Instant> next;
  {
    const std::lock_guard lock(mutex_);
    std::erase_if(pastes_, [&](const Paste& paste) { return paste.closesAt() <= now; });
    for (auto& paste : pastes_) {
      if (paste.isInTime() && paste.calmsAt() <= now) {
        paste.isLate = someBecameLate = true;
        habits_.leftUnread(paste.target.client);
      }
      if (paste.isLate) continue;
      const auto due = paste.calmsAt() > now ? paste.calmsAt() : paste.closesAt();
      next = std::min(next.value_or(due), due);
    }
  }
  if (someBecameLate) observers_.notify();
  return next;
}

std::vector<PasteTracker::Late> PasteTracker::latePastes() const {
  const std::lock_guard lock(mutex_);
  std::vector<Late> result;
  for (const auto& paste : pastes_) {
    if (paste.isLate) result.push_back({paste.id, paste.target});
  }
  return result;
}

void PasteTracker::close(PasteId paste) {
  const std::lock_guard lock(mutex_);
  std::erase_if(pastes_, [&](const Paste& each) { return each.id == paste; });
}

void PasteTracker::closeIgnored(PasteId paste) {
  const std::lock_guard lock(mutex_);
  const auto* found = find(paste);
  if (found != nullptr && found->lastVisit != found->announced) return;
  std::erase_if(pastes_, [&](const Paste& each) { return each.id == paste; });
}

void PasteTracker::closeLate(bool fromPrimary) {
  const auto selection = fromPrimary ? PasteSelection::clipboardAndPrimary : PasteSelection::clipboard;
  const std::lock_guard lock(mutex_);
  std::erase_if(pastes_, [&](const Paste& paste) { return paste.isLate && paste.selection == selection; });
}

PasteTracker::Paste* PasteTracker::find(PasteId paste) {
  const auto found = std::ranges::find(pastes_, paste, &Paste::id);
  return found != pastes_.end() ? &*found : nullptr;
}

}  // namespace quorlo
