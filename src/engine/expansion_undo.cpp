#include "engine/expansion_undo.h"

#include "platform/event_poster.h"
#include "platform/insertion/insertion_target.h"
#include "text/graphemes.h"

#include <algorithm>
#include <utility>

namespace quorlo {
namespace {

constexpr char16_t kPicture = 0xFFFC;
// Where characters overtake the keys before them, so many are overtaken at most.
constexpr int kBackspacesPerPause = 50;
constexpr ModifierFlags kHeld = modifier::kCommands | modifier::kShift;

bool isTrail(char16_t unit) {
  return (unit & 0xFC00) == 0xDC00;
}

// Editors erase the blanks of an indentation together; a single blank behind the last line break is none.
bool isIndented(std::u16string_view text) {
  const auto blank = text.find(u"\n ");
  return blank != std::u16string_view::npos && blank + 2 < text.size();
}

}  // namespace

std::optional<int> backspacesFor(std::u16string_view inserted) {
  if (inserted.empty() || inserted.find_first_of(u"\t\r") != std::u16string_view::npos ||
      inserted.find(kPicture) != std::u16string_view::npos || isIndented(inserted)) {
    return std::nullopt;
  }
  const auto characters = graphemeCount(inserted);
  const auto codePoints =
      inserted.size() - static_cast<std::size_t>(std::ranges::count_if(inserted, isTrail));
  if (characters != codePoints || characters > kLongestUndo) return std::nullopt;
  return static_cast<int>(characters);
}

std::u16string_view delimiterToGiveBack(std::u16string_view delimiter) {
  return delimiter == u"\r" || delimiter == u"\t" ? std::u16string_view() : delimiter;
}

void ExpansionUndo::offer(UndoableExpansion expansion) {
  offer_.reset();
  const auto backspaces = backspacesFor(expansion.inserted);
  if (backspaces && expansion.window != 0) offer_ = {std::move(expansion), *backspaces, use_.queue.now()};
}

bool ExpansionUndo::takes(const KeyDownEvent& event) {
  auto offer = std::exchange(offer_, std::nullopt);
  if (!offer || event.origin != KeyDownEvent::Origin::keyboard || event.keyCode != key::kBackspace ||
      (event.flags & kHeld) != 0 || use_.queue.now() - offer->since > kOfferLife ||
      !use_.frontWindow.isStill(offer->expansion.window) || !use_.pieces.lastWasRead() ||
      !use_.poster.canType(offer->expansion.typed)) {
    return false;
  }
  hold_ = use_.typedKeys.begin();
  use_.queue.run(life_.guard([this, taken = std::move(*offer)]() mutable { erase(std::move(taken)); }));
  return true;
}

void ExpansionUndo::erase(Offer offer) {
  // Otherwise the Backspace is delivered like any other.
  if (!hold_ || !hold_->keepTrigger()) return hold_.reset();
  use_.poster.postKey(use_.deleteKeyCode, 0, PostLocation::annotatedSession, offer.backspaces);
  const auto pause =
      use_.target.profile().pauseAfterCaretMoves * (1 + offer.backspaces / kBackspacesPerPause);
  if (pause <= Seconds(0)) return giveBack(offer.expansion);
  hold_->expectPause(pause);
  use_.queue.runAfter(pause, life_.guard([this, taken = std::move(offer.expansion)] { giveBack(taken); }));
}

void ExpansionUndo::giveBack(const UndoableExpansion& expansion) {
  const auto hold = std::move(hold_);
  use_.poster.typeText(expansion.typed);
  if (expansion.undone) expansion.undone();
}

}  // namespace quorlo
