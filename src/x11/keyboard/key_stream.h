#pragma once

#include "platform/event_tap.h"
#include "x11/guard/press_id.h"
#include "x11/keyboard/key_reader.h"

#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace quorlo {

// What a physical keyboard did. Auto-repeats are told apart by the server.
struct PhysicalKey {
  enum class Kind { press, release, repeat };
  Kind kind;
  std::uint16_t device;
  XKeycode keycode;
  PressId press{};  // of a press
};

// Which of the holds that follow each other; none has the first value.
using HoldId = std::uint64_t;

// The way of every key from the physical keyboards to the applications: a press is judged and then passed
// on or swallowed, a release follows its press, and during a hold keys wait in a queue.
//
// `handle` and `drain` belong to one thread, which is where keys are judged; everything else may be called
// from any thread, from within the judgement too.
class KeyStream {
 public:
  // The keyboard as applications see it. Called with the stream's lock held; must not call back.
  class Output {
   public:
    virtual ~Output() = default;
    virtual void press(XKeycode keycode) = 0;
    virtual void release(XKeycode keycode) = 0;
    virtual void flush() = 0;
    // What is locked and latched after all keys pressed so far. Waits for the server.
    virtual KeyReader::Locks locks() = 0;
    // For the guard: the press waits in the queue; it and all before it have been passed on or swallowed.
    virtual void taken(PressId) {}
    virtual void settled(PressId) {}
  };
  // Called without the lock.
  class Judge {
   public:
    virtual ~Judge() = default;
    virtual TapVerdict keyPressed(const KeyDownEvent& event) = 0;
    // The server repeats a key by itself: this is a notice only.
    virtual void keyRepeated(const KeyDownEvent& event) = 0;
  };

  KeyStream(Output& output, Judge& judge, KeyReader reader)
      : output_(output), judge_(judge), reader_(std::move(reader)) {}

  // Takes over from the server. `held` are the keys that are physically down: modifiers go on being held
  // for the applications, other keys are let go.
  void begin(const std::vector<std::pair<std::uint16_t, XKeycode>>& held);
  // Lets every key go. The queue is dropped.
  void end();

  void handle(PhysicalKey key);
  // Judges what waits, until the queue is empty or a hold begins.
  void drain();
  // Of the keys that applications see as held, those that did not come this way are let go: nobody would
  // see their release.
  void letGoOthers(const std::vector<XKeycode>& pressed);
  // Keys that are down no longer, though nobody saw their release: their keyboard was unplugged.
  void keepOnly(const std::set<std::pair<std::uint16_t, XKeycode>>& held);

  // From now on applications see no key down, and keys wait in the queue. A hold within a hold is part of it.
  HoldId beginHold();
  // A key that is swallowed by the judgement in which the hold began stays swallowed from now on; when the
  // hold ends before, that key is passed on after all, ahead of the queue. False when the hold has ended.
  [[nodiscard]] bool keepTrigger(HoldId hold);
  // The queue is delivered by the next drain().
  void endHold();
  bool isHolding() const;

  // Runs `post` while the applications see none of the user's modifiers held. Keys typed meanwhile wait for
  // the next drain(). One thread at a time.
  template <class Post>
  void withoutModifiers(Post post) {
    const auto modifiers = beginPost();
    post(output_);
    endPost(modifiers);
  }

  void setMap(KeyMap map);
  void setLocks(const KeyReader::Locks& locks);
  // Modifiers that are tapped hold for the next key, by rules that only the server knows: it is asked after
  // every key.
  void setStickyKeys(bool isOn);

 private:
  struct Trigger {
    XKeycode keycode;
    bool endsComposition = false;
  };

  bool keysWait() const { return holding_ || posting_; }
  std::vector<XKeycode> beginPost();
  void endPost(const std::vector<XKeycode>& modifiers);
  void passJudgedEarlier();
  void settleLastPress();
  void handlePress(PhysicalKey key, std::unique_lock<std::mutex>& lock);
  void swallowComposition(XKeycode keycode);
  void press(XKeycode keycode);
  void release(XKeycode keycode);
  void tap(XKeycode keycode);
  void resumeModifiers();
  bool isReleasedUnused(XKeycode keycode) const;
  std::vector<XKeycode> releaseModifiers();

  Output& output_;
  Judge& judge_;
  mutable std::mutex mutex_;
  KeyReader reader_;
  std::set<std::pair<std::uint16_t, XKeycode>> physicallyDown_;
  std::set<XKeycode> down_;  // as applications see it
  std::deque<PhysicalKey> queue_;
  bool holding_ = false;
  bool posting_ = false;
  bool hasStickyKeys_ = false;
  HoldId lastHold_ = 0;
  std::optional<PressId> lastPress_;  // not settled yet
  std::optional<XKeycode> judging_;
  std::optional<Trigger> trigger_;         // swallowed, or about to be, and not yet kept
  std::optional<XKeycode> judgedEarlier_;  // to be passed on unasked, ahead of the queue
  std::vector<XKeycode> pausedModifiers_;  // held when the hold began
};

}  // namespace quorlo
