#include "x11/keyboard/sharing/map_sharing.h"

#include <utility>

namespace quorlo {

bool MapSharing::useMapOf(Device keyboard, const std::set<Device>& grabbed) {
  if (source_ == keyboard) return false;
  // A change under way must reach the keyboard before its map is taken for the session's.
  const bool hasChanged = follow(grabbed);
  source_ = keyboard;
  auto wanted = readKeyboardMap(*connection_, keyboard);
  if (!wanted.keys || wanted == known_) return hasChanged;
  giveMap(*connection_, xtestKeyboard_, wanted);
  known_ = std::move(wanted);
  return true;
}

bool MapSharing::follow(const std::set<Device>& grabbed) {
  auto now = readKeyboardMap(*connection_, xtestKeyboard_);
  if (!now.keys || now == known_) return false;
  const auto before = std::exchange(known_, std::move(now));
  if (!before.keys) return true;
  for (const auto device : grabbed) giveMapChange(*connection_, device, before, known_);
  return true;
}

void MapSharing::forget(Device keyboard) {
  if (source_ == keyboard) source_ = 0;
}

}  // namespace quorlo
