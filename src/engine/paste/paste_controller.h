#pragma once

#include "base/life_token.h"
#include "base/observers.h"
#include "base/subscription.h"
#include "engine/paste/snippet_preparation.h"
#include "platform/key_codes.h"
#include "platform/main_queue.h"
#include "platform/pasteboard.h"
#include "text/attributed_string.h"
#include "text/text_range.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quorlo {

class EventPoster;
class KeyboardLayout;
class OwnApplication;
class QLSnippet;
class SettingsController;
class SoundManager;
class TypedKeysHold;
class UserNotifications;

// Puts a snippet into the application the user is typing in: erases the typed abbreviation, pastes the
// snippet piece by piece, presses the keys between the pieces, moves the caret and puts back what was on
// the pasteboard. Expansions run one after the other; keys that the user types meanwhile are held until
// the end. One instance; main thread; each step schedules the next.
class PasteController {
 public:
  // Told how many characters (graphemes) went into the application.
  using PastingCompletion = std::function<void(std::size_t insertedCharacters)>;

  struct Dependencies {
    MainQueue& queue;
    Pasteboard& generalPasteboard;
    EventPoster& poster;
    KeyboardLayout& layout;
    TypedKeysHold& typedKeys;
    OwnApplication& application;
    UserNotifications& notifications;
    SettingsController& settings;
    SoundManager& sound;
    SnippetPreparation& preparation;
  };

  // The references must outlive the controller.
  explicit PasteController(const Dependencies& dependencies);

  static PasteController& shared();

  // Inserts `content`, which is the snippet's content as it is to be inserted. `abbreviation` is what the
  // user typed and what is erased; empty for a snippet chosen otherwise. The completion runs once the
  // snippet has been inserted, unless the pasteboard is not to be restored.
  void pasteSnippet(AttributedString content, std::shared_ptr<QLSnippet> snippet, std::u16string abbreviation,
                    PastingCompletion completion);

  // Hides the program's windows, if any, until the next insertion has ended: for whoever knows earlier than
  // the insertion itself that they stand in its way.
  void hideOwnWindows();

  // Called when an insertion begins.
  Subscription observeInsertions(std::function<void()> callback) {
    return insertions_.add(std::move(callback));
  }

 private:
  struct Request {
    AttributedString content;
    std::shared_ptr<QLSnippet> snippet;
    std::u16string abbreviation;
    PastingCompletion completion;
  };

  void begin(Request request);
  void savePasteboard();
  void prepare(Request request);
  void insert(PreparedSnippet prepared);
  void callOff();
  void leaveThePasteboardToTheUser();
  void whenPasteboardIsSaved(std::function<void()> next);
  void fillIn(PreparedSnippet prepared);
  void showOwnWindowsLater();
  void putNextPiece();
  void countKeysToCursor(const AttributedString& piece);
  void deleteAbbreviationAndPaste();
  void postPaste();
  void pressPasteChord();
  void typeNextSpecialKey();
  void pressSpecialKey(const std::string& type, TextRange range);
  void pasteClipboard(bool textOnly);
  void pasteNextPartOrFinish();
  void moveCaretToCursor();
  void scheduleRestore();
  void restorePasteboardItems();
  void finishPasting();
  void notifyAutoPasteOff();
  void endExpansion();
  void after(Seconds delay, void (PasteController::*step)());

  Dependencies use_;

  Pasteboard& generalPasteboard;
  bool hadRegularActivationPolicy = false;
  std::vector<PasteboardItem> pasteboardItems;
  std::vector<PasteboardItem> pasteboardItemsForClipboardMacro;
  bool abbreviationHasBeenRemoved = false;
  std::optional<TextRange> cursorRange;
  // The lists of keys are consumed from their end: the key to press first stands last.
  std::vector<TextRange> rangeOfSpecialKeys;
  std::vector<std::pair<TextRange, KeyCombination>> combiKeys;
  std::vector<std::string> specialKeyTypes;
  std::shared_ptr<QLSnippet> snippet;
  std::optional<std::u16string> abbreviationUsedToTriggerPaste;
  AttributedString snippetText;
  std::deque<AttributedString> seperatedSnippetText;
  std::size_t numberOfKeyTypesToGetToCursorPosition = 0;
  KeyCode deleteKeyCode;
  KeyCode leftArrowKeyCode;
  PastingCompletion pastingCompletionHandler;
  bool ignorePaste = false;

  std::size_t cursorPiece_ = 0;
  std::size_t pieceIndex_ = 0;
  std::size_t pieceStart_ = 0;  // of the next piece, in snippetText

  bool isExpanding_ = false;
  bool isAsking_ = false;    // the preparation waits for the user
  bool isAnswered_ = false;  // the preparation has completed
  std::deque<Request> waiting_;
  Observers<> insertions_;
  Subscription hold_;

  bool restoreIsPending_ = false;
  std::uint64_t restoreGeneration_ = 0;  // an older scheduled restore does nothing
  bool pasteboardIsSaved_ = false;
  std::uint64_t readGeneration_ = 0;  // only the last read counts
  std::optional<std::int64_t> changeCountOfLastPiece_;
  bool unhideIsPending_ = false;
  std::uint64_t unhideGeneration_ = 0;
  std::function<void()> whenPasteboardIsSaved_;

  LifeToken life_;
};

}  // namespace quorlo
