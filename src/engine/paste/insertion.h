#pragma once

#include "base/life_token.h"
#include "engine/paste/paste_services.h"
#include "macros/prepared_snippet.h"
#include "platform/front_window.h"
#include "platform/insertion/toolkit.h"
#include "platform/main_queue.h"
#include "platform/pasteboard.h"
#include "platform/typed_keys_hold.h"
#include "text/attributed_string.h"
#include "text/text_range.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

class OwnWindows;
class PasteboardKeeper;
class QLSnippet;

// What was asked for, and the state of the desktop at that moment.
struct InsertionRequest {
  std::unique_ptr<TypedKeysHold::Hold> hold;
  FrontWindow::Id target = 0;
  AttributedString content;
  std::shared_ptr<QLSnippet> snippet;
  std::u16string abbreviation;
  std::function<void(std::size_t insertedCharacters)> completion;
  // Called, before the completion, when the whole text has been pasted at once and the caret stands behind
  // it.
  std::function<void(const std::u16string& text)> standsBeforeCaret;
};

// One snippet on its way into the application that the user is typing in. Made for a request and destroyed
// at its end; each step schedules the next. Main thread.
//
//   start -> prepare -> (the user fills in fields) -> insert
//   -> for each piece: putNextPiece -> deleteAbbreviationAndPaste -> typeNextSpecialKey
//   -> moveCaretToCursor -> the pasteboard is given back later, the completion runs
class Insertion {
 public:
  // The references must outlive the insertion. `ended` is called once, last of all: it may destroy the
  // insertion.
  Insertion(const PasteServices& services, const PasteKeys& keys, PasteboardKeeper& pasteboard,
            OwnWindows& ownWindows, InsertionRequest request, std::function<void()> ended);

  void start();
  // Cancels an open question: the user has left it for something else. Does nothing without a question.
  void callOffQuestion();

 private:
  void prepare();
  bool keepTrigger();
  void callOff();
  void insert(PreparedSnippet prepared);
  void putNextPiece();
  bool mayBegin();
  bool reachesTarget() const;
  void putPiece();
  void countKeysToCursor(const AttributedString& piece);
  void deleteAbbreviationAndPaste();
  void postPaste();
  void pasteOrType(std::u16string_view text);
  void typeNextSpecialKey();
  void pressSpecialKey(const KeyStep& key);
  void pasteClipboard(bool textOnly);
  void pasteNextPartOrFinish();
  void moveCaretToCursor();
  void restoreAndFinish();
  void giveBackPasteboard();
  std::function<Toolkit()> toolkit() const;
  void finishPasting();
  void notifyAutoPasteOff();
  void end();
  void after(Seconds delay, void (Insertion::*step)());
  // What is posted now must not overtake the piece pasted last, in a target that is slow to read it.
  void whenRead(std::function<void()> next);

  // The first member: keys are delivered once all of the others are gone, and may begin the next insertion.
  std::unique_ptr<TypedKeysHold::Hold> hold_;
  const PasteServices& use_;
  const PasteKeys& keys_;
  PasteboardKeeper& pasteboard_;
  OwnWindows& ownWindows_;
  std::function<void()> ended_;

  FrontWindow::Id target_;
  AttributedString content_;
  std::shared_ptr<QLSnippet> snippet;
  std::u16string abbreviationUsedToTriggerPaste;
  std::function<void(std::size_t)> pastingCompletionHandler;
  std::function<void(const std::u16string&)> standsBeforeCaret_;

  bool holdWasWhole_ = true;
  bool isAsking_ = false;      // the preparation waits for the user
  bool isAnswered_ = false;    // the preparation has completed
  bool isPlainPaste_ = false;  // without keys to press and without a place for the caret

  AttributedString snippetText;
  std::deque<AttributedString> seperatedSnippetText;  // pieces still to paste
  std::deque<KeyStep> specialKeys_;                   // keys still to press
  std::vector<PasteboardItem> pasteboardItemsForClipboardMacro;
  std::optional<TextRange> cursorRange;
  std::size_t cursorPiece_ = 0;
  std::size_t pieceIndex_ = 0;
  std::size_t pieceStart_ = 0;  // of the next piece, in snippetText
  std::size_t numberOfKeyTypesToGetToCursorPosition = 0;
  bool keyMayMoveFocus_ = false;  // the key pressed last
  bool abbreviationHasBeenRemoved = false;
  bool ignorePaste = false;
  std::u16string pieceText_;  // of the piece to paste now

  LifeToken life_;
};

}  // namespace quorlo
