#include "x11/selection/paste_tracker.h"

#include "x11/selection/selection_offer.h"

#include <algorithm>

namespace quorlo {

PasteTracker::Instant PasteTracker::Paste::calmsAt() const {
  return lastActivity + (delivered ? Instant::duration(kQuiet) : kPatience);
}

PasteTracker::Instant PasteTracker::Paste::closesAt() const {
  if (!delivered) return calmsAt();
  // A program that never stops asking is not pasting.
  return std::max(calmsAt(), std::min(lastVisit + kLinger, announced + kPatience));
}

bool PasteTracker::hasUnreadPaste() const {
  const std::lock_guard lock(mutex_);
  return std::ranges::any_of(pastes_, [](const Paste& paste) { return !paste.delivered; });
}

PasteTracker::Instant PasteTracker::lastProgress() const {
  const std::lock_guard lock(mutex_);
  return lastProgress_;
}

Subscription PasteTracker::observe(std::function<void()> changed) {
  return observers_.add(std::move(changed));
}

void PasteTracker::announce(const ClientIdentity& target, PasteSelection selection, Offer offer,
                            Instant now) {
  {
    const std::lock_guard lock(mutex_);
    pastes_.push_back({++lastPaste_, target, selection, std::move(offer), now, now, now, {}});
  }
  observers_.notify();
}

std::optional<PasteTracker::Reading> PasteTracker::readingFor(const ClientIdentity& reader, bool fromPrimary,
                                                              std::string_view target, Instant now) {
  closeFinished(now);
  const bool isContent = !isProtocolTarget(target) && !isMarkerTarget(target);
  const std::lock_guard lock(mutex_);
  const auto isReaders = [&](const Paste& paste) {
    return paste.target.isSameProgramAs(reader) &&
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
  if (paste == pastes_.end()) return std::nullopt;
  paste->lastVisit = now;
  if (isContent) {
    const bool isNew = paste->asked.emplace(target).second;
    if (paste->delivered && isNew) paste->lastActivity = now;
  }
  return Reading{paste->id, paste->offer};
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
    if (auto* found = find(paste)) {
      if (!found->delivered) found->lastActivity = now;
      found->delivered = true;
    }
  }
  observers_.notify();
}

bool PasteTracker::hasOpenPaste() const {
  const std::lock_guard lock(mutex_);
  return !pastes_.empty();
}

bool PasteTracker::isBusy(const ClientIdentity& target, Instant now) const {
  const std::lock_guard lock(mutex_);
  return std::ranges::any_of(pastes_, [&](const Paste& paste) {
    return paste.target.isSameProgramAs(target) && paste.calmsAt() > now;
  });
}

void PasteTracker::closeDelivered(const ClientIdentity& target) {
  const std::lock_guard lock(mutex_);
  std::erase_if(pastes_,
                [&](const Paste& paste) { return paste.delivered && paste.target.isSameProgramAs(target); });
}

bool PasteTracker::hasOpenPasteFromPrimary() const {
  const std::lock_guard lock(mutex_);
  return std::ranges::any_of(
      pastes_, [](const Paste& paste) { return paste.selection == PasteSelection::clipboardAndPrimary; });
}

std::optional<PasteTracker::Instant> PasteTracker::closeFinished(Instant now) {
  bool closedUnread = false;
  std::optional<Instant> next;
  {
    const std::lock_guard lock(mutex_);
    std::erase_if(pastes_, [&](const Paste& paste) {
      if (paste.closesAt() > now) return false;
      closedUnread = closedUnread || !paste.delivered;
      return true;
    });
    for (const auto& paste : pastes_) {
      const auto due = paste.calmsAt() > now ? paste.calmsAt() : paste.closesAt();
      next = std::min(next.value_or(due), due);
    }
  }
  if (closedUnread) observers_.notify();
  return next;
}

PasteTracker::Paste* PasteTracker::find(PasteId paste) {
  const auto found = std::ranges::find(pastes_, paste, &Paste::id);
  return found != pastes_.end() ? &*found : nullptr;
}

}  // namespace quorlo
