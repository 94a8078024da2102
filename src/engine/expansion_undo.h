#pragma once

#include "base/life_token.h"
#include "platform/event_tap.h"
#include "platform/front_window.h"
#include "platform/key_codes.h"
#include "platform/main_queue.h"
#include "platform/pasted_pieces.h"
#include "platform/typed_keys_hold.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace quorlo {

class EventPoster;
class InsertionTarget;

// An expansion whose text stands in front of the caret.
struct UndoableExpansion {
  std::u16string inserted;
  std::u16string typed;          // what is given back
  FrontWindow::Id window = 0;    // the one that it went into; 0 gives no offer
  std::function<void()> undone;  // may be empty
};

// How many presses of Backspace erase the text in every application. Absent for a text that applications
// erase differently (pictures, combined characters, tabs and indentation) and for more than kLongestUndo
// characters.
inline constexpr std::size_t kLongestUndo = 1000;
std::optional<int> backspacesFor(std::u16string_view inserted);

// What a delimiter leaves in the text that is given back. Return and Tab act rather than write, so they are
// not pressed again.
std::u16string_view delimiterToGiveBack(std::u16string_view delimiter);

// Takes back an expansion: Backspace pressed right after it erases the inserted text and types what the user
// had typed. The keyboard alone is used. One instance; main thread.
//
//   none --offer--> offered --Backspace in the same window within kOfferLife--> none, taken back
//                   offered --any other key, withdraw(), another offer--> none
class ExpansionUndo {
 public:
  static constexpr Seconds kOfferLife{20};

  struct Dependencies {
    MainQueue& queue;
    EventPoster& poster;
    InsertionTarget& target;
    TypedKeysHold& typedKeys;
    const PastedPieces& pieces;
    const FrontWindow& frontWindow;
    KeyCode deleteKeyCode;
  };

  explicit ExpansionUndo(const Dependencies& dependencies) : use_(dependencies) {}

  // Ignored where the text cannot be erased or typed by keys.
  void offer(UndoableExpansion expansion);
  bool isOffered() const { return offer_.has_value(); }
  // The caret may be somewhere else now.
  void withdraw() { offer_.reset(); }

  // Every key pressed ends the offer. True for the Backspace that takes the expansion back, which is to be
  // swallowed; the keys that do it are posted in the next turn of the main queue.
  bool takes(const KeyDownEvent& event);

 private:
  struct Offer {
    UndoableExpansion expansion;
    int backspaces = 0;
    MainQueue::Instant since;
  };
  void erase(Offer offer);
  void giveBack(const UndoableExpansion& expansion);

  Dependencies use_;
  std::optional<Offer> offer_;
  std::unique_ptr<TypedKeysHold::Hold> hold_;  // from the Backspace until the keys are posted
  LifeToken life_;
};

}  // namespace quorlo
