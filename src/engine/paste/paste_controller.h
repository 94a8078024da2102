#pragma once

#include "base/life_token.h"
#include "base/observers.h"
#include "base/subscription.h"
#include "engine/paste/insertion.h"
#include "engine/paste/own_windows.h"
#include "engine/paste/paste_services.h"
#include "engine/paste/pasteboard_keeper.h"
#include "text/attributed_string.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>

namespace quorlo {

class QLSnippet;

// Puts snippets into the application the user is typing in: erases the typed abbreviation, pastes the
// snippet piece by piece, presses the keys between the pieces, moves the caret and puts back what was on
// the pasteboard. Insertions run one after the other; keys that the user types meanwhile are held until
// the end. One instance; main thread.
class PasteController {
 public:
  // Told how many characters (graphemes) went into the application.
  using PastingCompletion = std::function<void(std::size_t insertedCharacters)>;
  using Dependencies = PasteServices;

  // The references must outlive the controller.
  explicit PasteController(const Dependencies& dependencies);

  static PasteController& shared();

  // Given the text once it stands in front of the caret: pasted at once, with no key pressed after it.
  using StandsBeforeCaret = std::function<void(const std::u16string& text)>;

  // Inserts `content`, which is the snippet's content as it is to be inserted. `abbreviation` is what the
  // user typed and what is erased; empty for a snippet chosen otherwise. The completion runs once the
  // snippet has been inserted, unless the pasteboard is not to be restored.
  void pasteSnippet(AttributedString content, std::shared_ptr<QLSnippet> snippet, std::u16string abbreviation,
                    PastingCompletion completion, StandsBeforeCaret standsBeforeCaret = {});

  // False in an application that the user wants left alone.
  bool mayExpand() const;

  // Lets the menu hide the program's windows before the insertion starts. They return when it has ended.
  void hideOwnWindows() { ownWindows_.hide(); }

  // Called when an insertion begins.
  Subscription observeInsertions(std::function<void()> callback) {
    return insertions_.add(std::move(callback));
  }

 private:
  void begin(InsertionRequest request);
  void endInsertion();

  Dependencies use_;
  PasteKeys keys_;
  PasteboardKeeper pasteboard_;
  OwnWindows ownWindows_;
  Observers<> insertions_;
  std::deque<InsertionRequest> waiting_;
  std::unique_ptr<Insertion> insertion_;  // the one under way
  LifeToken life_;
};

}  // namespace quorlo
