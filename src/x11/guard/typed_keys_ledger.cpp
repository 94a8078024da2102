#include "x11/guard/typed_keys_ledger.h"

#include <algorithm>

namespace quorlo {

namespace {

void apply(const TypedKeysLedger::Key& key, TypedKeysLedger::Keys& down) {
  if (key.isPress) {
    down.emplace(key.device, key.keycode);
  } else {
    down.erase({key.device, key.keycode});
  }
}

}  // namespace

void TypedKeysLedger::typed(Key key, std::uint32_t time) {
  time_ = time;
  entries_.push_back({key, key.isPress ? numbering_.next(key.device, time) : PressId{time, key.device, 0}});
  dropSettled();
}

void TypedKeysLedger::passedByItself(Key key) {
  const auto isIt = [&](const Entry& entry) {
    return entry.key.isPress == key.isPress && entry.key.device == key.device &&
           entry.key.keycode == key.keycode;
  };
  const auto found = std::ranges::find_if(entries_.rbegin(), entries_.rend(), isIt);
  if (found == entries_.rend()) return;
  found->passedByItself = true;
  dropSettled();
}

void TypedKeysLedger::report(PressReport report, PressId press) {
  lastSign_ = time_;
  anySign_ = true;
  const auto count = countUpTo(press);
  if (report == PressReport::settled) {
    for (std::size_t i = 0; i < count; ++i) dropFirst();
    dropSettled();
  } else {
    for (std::size_t i = 0; i < count; ++i) entries_[i].isTaken = true;
  }
}

// The entries up to this press; where it is not among them, those of earlier times.
std::size_t TypedKeysLedger::countUpTo(PressId press) const {
  std::size_t earlier = 0;
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    const auto& entry = entries_[i];
    if (entry.key.isPress && entry.id == press) return i + 1;
    if (isLater(press.time, entry.id.time)) earlier = i + 1;
  }
  return earlier;
}

// A release is part of what follows a press that is still to be delivered, else of the state before it.
void TypedKeysLedger::dropSettled() {
  while (!entries_.empty() && (!entries_.front().key.isPress || entries_.front().passedByItself)) dropFirst();
}

void TypedKeysLedger::dropFirst() {
  apply(entries_.front().key, down_);
  entries_.pop_front();
}

std::optional<PressId> TypedKeysLedger::unanswered() const {
  for (const auto& entry : entries_) {
    if (entry.key.isPress && !entry.isTaken && !entry.passedByItself) return entry.id;
  }
  return std::nullopt;
}

std::optional<PressId> TypedKeysLedger::owed() const {
  if (const auto press = unanswered()) return press;
  return entries_.empty() ? std::nullopt : std::optional(entries_.front().id);
}

std::uint32_t TypedKeysLedger::waitingSince() const {
  const auto press = unanswered();
  if (!press) return time_;
  return anySign_ && isLater(lastSign_, press->time) ? lastSign_ : press->time;
}

std::vector<TypedKeysLedger::Key> TypedKeysLedger::undelivered() const {
  std::vector<Key> keys;
  for (const auto& entry : entries_) {
    if (!entry.passedByItself) keys.push_back(entry.key);
  }
  return keys;
}

TypedKeysLedger::Keys TypedKeysLedger::downNow() const {
  Keys down = down_;
  for (const auto& entry : entries_) apply(entry.key, down);
  return down;
}

}  // namespace quorlo
