#include "x11/selection/reader_habits.h"

#include <algorithm>

namespace quorlo {

void ReaderHabits::readUnasked(const ClientIdentity& reader, Instant now) {
  if (now - contentsChanged_ > kManagersTime || isClipboardManager(reader)) return;
  managers_.push_back(reader);
}

bool ReaderHabits::isClipboardManager(const ClientIdentity& reader) const {
  return std::ranges::any_of(managers_,
                             [&](const ClientIdentity& manager) { return manager.isSameProgramAs(reader); });
}

std::chrono::milliseconds ReaderHabits::patienceWith(const ClientIdentity& target) const {
  const auto found = unread_.find(keyOf(target));
  return found != unread_.end() && found->second >= 2 ? kShortPatience : kPatience;
}

std::int64_t ReaderHabits::keyOf(const ClientIdentity& program) {
  return program.processIdentifier != 0 ? program.processIdentifier : program.resourceBase;
}

}  // namespace quorlo
