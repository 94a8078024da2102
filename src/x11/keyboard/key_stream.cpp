#include "x11/keyboard/key_stream.h"

#include <algorithm>

namespace quorlo {

void KeyStream::begin(const std::vector<std::pair<std::uint16_t, XKeycode>>& held) {
  const std::lock_guard lock(mutex_);
  for (const auto& [device, keycode] : held) {
    physicallyDown_.emplace(device, keycode);
    if (!reader_.map().isHeldModifierKey(keycode)) continue;
    press(keycode);
    reader_.press(keycode);
  }
  output_.flush();
}

void KeyStream::end() {
  const std::lock_guard lock(mutex_);
  for (const auto keycode : down_) output_.release(keycode);
  down_.clear();
  queue_.clear();
  physicallyDown_.clear();
  pausedModifiers_.clear();
  trigger_.reset();
  judgedEarlier_.reset();
  lastPress_.reset();
  holding_ = false;
  output_.flush();
}

void KeyStream::handle(PhysicalKey key) {
  {
    const std::lock_guard lock(mutex_);
    if (key.kind == PhysicalKey::Kind::press) physicallyDown_.emplace(key.device, key.keycode);
    if (key.kind == PhysicalKey::Kind::release) physicallyDown_.erase({key.device, key.keycode});
    // A key held down during a hold must not come out as a flood.
    if (key.kind == PhysicalKey::Kind::repeat && (keysWait() || !queue_.empty())) return;
    queue_.push_back(key);
    if (keysWait() && key.kind == PhysicalKey::Kind::press) {
      output_.taken(key.press);
      output_.flush();
    }
  }
  drain();
}

void KeyStream::drain() {
  std::unique_lock lock(mutex_);
  if (keysWait()) return;
  resumeModifiers();
  passJudgedEarlier();
  while (!keysWait() && !queue_.empty()) {
    const auto key = queue_.front();
    queue_.pop_front();
    switch (key.kind) {
      case PhysicalKey::Kind::press:
        handlePress(key, lock);
        break;
      case PhysicalKey::Kind::release:
        reader_.release(key.keycode);
        release(key.keycode);
        break;
      case PhysicalKey::Kind::repeat:
        if (down_.contains(key.keycode) && !reader_.map().isModifierKey(key.keycode)) {
          const auto event = reader_.readRepeat(key.keycode);
          lock.unlock();
          judge_.keyRepeated(event);
          lock.lock();
        }
        break;
    }
    if (hasStickyKeys_ || reader_.hasLatches()) reader_.setLocks(output_.locks());
  }
  output_.flush();
}

void KeyStream::letGoOthers(const std::vector<XKeycode>& pressed) {
  const std::lock_guard lock(mutex_);
  for (const auto keycode : pressed) {
    if (!down_.contains(keycode)) output_.release(keycode);
  }
  output_.flush();
}

void KeyStream::keepOnly(const std::set<std::pair<std::uint16_t, XKeycode>>& held) {
  std::vector<std::pair<std::uint16_t, XKeycode>> lost;
  {
    const std::lock_guard lock(mutex_);
    std::ranges::set_difference(physicallyDown_, held, std::back_inserter(lost));
  }
  for (const auto& [device, keycode] : lost) handle({PhysicalKey::Kind::release, device, keycode});
}

void KeyStream::handlePress(PhysicalKey key, std::unique_lock<std::mutex>& lock) {
  lastPress_ = key.press;
  if (reader_.map().isModifierKey(key.keycode)) {
    reader_.press(key.keycode);
    press(key.keycode);
    settleLastPress();
    return;
  }
  const auto reading = reader_.readPress(key.keycode);
  reader_.press(key.keycode);
  // What was passed so far must not wait for the judgement.
  output_.flush();
  judging_ = key.keycode;
  lock.unlock();
  const auto verdict = judge_.keyPressed(reading.event);
  lock.lock();
  judging_.reset();
  if (verdict == TapVerdict::pass) {
    trigger_.reset();
    judgedEarlier_ = key.keycode;
  } else if (reading.endsComposition) {
    if (trigger_) {
      trigger_->endsComposition = true;
    } else if (!judgedEarlier_) {
      swallowComposition(key.keycode);
    }
  }
  if (!keysWait()) {
    resumeModifiers();
    passJudgedEarlier();
  }
  settleLastPress();
}

void KeyStream::passJudgedEarlier() {
  if (judgedEarlier_) press(*judgedEarlier_);
  judgedEarlier_.reset();
  settleLastPress();
}

void KeyStream::settleLastPress() {
  if (!lastPress_ || judging_ || trigger_ || judgedEarlier_) return;
  output_.settled(*lastPress_);
  lastPress_.reset();
}

// The application has seen the keys before this one and would take the next key for the end of the
// composition. It gets the right end, and then loses the character again.
void KeyStream::swallowComposition(XKeycode keycode) {
  for (const auto modifier : pausedModifiers_) press(modifier);
  tap(keycode);
  const auto modifiers = releaseModifiers();
  tap(reader_.map().keyForCode(key::kBackspace, reader_.layout()));
  if (holding_) return;
  for (const auto modifier : modifiers) press(modifier);
}

HoldId KeyStream::beginHold() {
  const std::lock_guard lock(mutex_);
  if (holding_) return lastHold_;
  holding_ = true;
  if (judging_) trigger_ = Trigger{*judging_};
  std::ranges::copy(releaseModifiers(), std::back_inserter(pausedModifiers_));
  for (const auto keycode : down_) output_.release(keycode);
  down_.clear();
  output_.flush();
  return ++lastHold_;
}

bool KeyStream::keepTrigger(HoldId hold) {
  const std::lock_guard lock(mutex_);
  if (!holding_ || hold != lastHold_) return false;
  if (trigger_ && trigger_->endsComposition) swallowComposition(trigger_->keycode);
  trigger_.reset();
  settleLastPress();
  output_.flush();
  return true;
}

void KeyStream::endHold() {
  const std::lock_guard lock(mutex_);
  holding_ = false;
  if (trigger_) judgedEarlier_ = trigger_->keycode;
  trigger_.reset();
}

bool KeyStream::isHolding() const {
  const std::lock_guard lock(mutex_);
  return holding_;
}

void KeyStream::resumeModifiers() {
  for (const auto keycode : pausedModifiers_) {
    if (!isReleasedUnused(keycode)) press(keycode);
  }
  pausedModifiers_.clear();
}

// Pressing a modifier only to let it go would open menus.
bool KeyStream::isReleasedUnused(XKeycode keycode) const {
  if (judgedEarlier_) return false;
  for (const auto& key : queue_) {
    if (key.kind == PhysicalKey::Kind::release && key.keycode == keycode) return true;
    if (key.kind == PhysicalKey::Kind::press && !reader_.map().isModifierKey(key.keycode)) return false;
  }
  return false;
}

void KeyStream::press(XKeycode keycode) {
  if (!down_.insert(keycode).second) output_.release(keycode);  // down on a second keyboard
  output_.press(keycode);
}

void KeyStream::release(XKeycode keycode) {
  const bool heldElsewhere =
      std::ranges::any_of(physicallyDown_, [keycode](const auto& key) { return key.second == keycode; });
  if (heldElsewhere && queue_.empty()) return;
  if (down_.erase(keycode) > 0) output_.release(keycode);
}

void KeyStream::tap(XKeycode keycode) {
  press(keycode);
  down_.erase(keycode);
  output_.release(keycode);
}

std::vector<XKeycode> KeyStream::releaseModifiers() {
  std::vector<XKeycode> modifiers;
  for (const auto keycode : down_) {
    if (reader_.map().isHeldModifierKey(keycode)) modifiers.push_back(keycode);
  }
  for (const auto keycode : modifiers) {
    down_.erase(keycode);
    output_.release(keycode);
  }
  return modifiers;
}

std::vector<XKeycode> KeyStream::beginPost() {
  const std::lock_guard lock(mutex_);
  posting_ = true;
  return releaseModifiers();
}

void KeyStream::endPost(const std::vector<XKeycode>& modifiers) {
  const std::lock_guard lock(mutex_);
  for (const auto keycode : modifiers) press(keycode);
  posting_ = false;
  output_.flush();
}

void KeyStream::setMap(KeyMap map) {
  const std::lock_guard lock(mutex_);
  reader_.setMap(std::move(map));
}

void KeyStream::setStickyKeys(bool isOn) {
  const std::lock_guard lock(mutex_);
  hasStickyKeys_ = isOn;
}

void KeyStream::setLocks(const KeyReader::Locks& locks) {
  const std::lock_guard lock(mutex_);
  reader_.setLocks(locks);
}

}  // namespace quorlo
