#include "engine/paste/insertion.h"

#include "app/settings/settings_controller.h"
#include "app/settings/sound_manager.h"
#include "base/log.h"
#include "engine/paste/own_windows.h"
#include "engine/paste/paste_notifications.h"
#include "engine/paste/pasteboard_keeper.h"
#include "engine/paste/pasteboard_markers.h"
#include "engine/paste/piece_contents.h"
#include "engine/paste/snippet_preparation.h"
#include "engine/paste/special_keys.h"
#include "engine/paste/typed_piece.h"
#include "platform/event_poster.h"
#include "platform/insertion/insertion_target.h"
#include "platform/insertion/key_counts.h"
#include "platform/pasted_pieces.h"
#include "platform/typed_keys_hold.h"
#include "platform/user_notifications.h"
#include "store/records/ql_snippet.h"
#include "store/records/snippet_type.h"
#include "text/graphemes.h"
#include "text/utf.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace quorlo {
namespace {

constexpr Seconds kStartDelay{0.05};
constexpr Seconds kLongestRead{1};  // beyond the pause after a piece
constexpr Seconds kLongestCopy{5};  // a picture that a clipboard macro pastes
constexpr Seconds kRestoreDelayWithoutPartsDelay{0.2};
constexpr Seconds kLongestRestoreDelay{1.0};
constexpr std::string_view kObjectReplacement = "\uFFFC";  // one step of the caret, like a picture

bool isClipboardKey(const KeyStep& key) {
  return key.type == kClipboardKey || key.type == kClipboardTextKey;
}

// Keys that open and close windows, as chords, Return in a dialog and Space on a button do.
bool mayMoveFocus(const KeyStep& key) {
  return key.type == kCombinationKey || key.type == "return" || key.type == "escape" || key.type == "space";
}

}  // namespace

Insertion::Insertion(const PasteServices& services, const PasteKeys& keys, PasteboardKeeper& pasteboard,
                     OwnWindows& ownWindows, InsertionRequest request, std::function<void()> ended)
    : hold_(std::move(request.hold)),
      use_(services),
      keys_(keys),
      pasteboard_(pasteboard),
      ownWindows_(ownWindows),
      ended_(std::move(ended)),
      target_(request.target),
      content_(std::move(request.content)),
      snippet(std::move(request.snippet)),
      abbreviationUsedToTriggerPaste(std::move(request.abbreviation)),
      pastingCompletionHandler(std::move(request.completion)),
      standsBeforeCaret_(std::move(request.standsBeforeCaret)) {}

void Insertion::start() {
  if (use_.settings.playSound()) use_.sound.play();
  // During the start delay, since another application takes its time to hand its contents over.
  pasteboard_.save();
  after(kStartDelay, &Insertion::prepare);
}

void Insertion::prepare() {
  auto prepared = [this](std::optional<PreparedSnippet> result) {
    isAnswered_ = true;
    if (result) {
      insert(std::move(*result));
    } else {
      callOff();
    }
  };
  use_.preparation.prepare(std::move(content_), *snippet, life_.guard(std::move(prepared)));
  if (isAnswered_) return;
  // While the question is open the user may copy and paste as ever.
  isAsking_ = true;
  pasteboard_.leaveToUser();
  // The delimiter must not be typed into the window that asks.
  if (!keepTrigger()) use_.preparation.callOff();
}

bool Insertion::keepTrigger() {
  holdWasWhole_ = holdWasWhole_ && hold_->keepTrigger();
  return holdWasWhole_;
}

void Insertion::callOffQuestion() {
  if (isAsking_) use_.preparation.callOff();
}

void Insertion::callOff() {
  if (pieceIndex_ == 0) {
    pasteboard_.leaveToUser();
  } else {
    giveBackPasteboard();
  }
  ownWindows_.showLater();
  end();
}

void Insertion::insert(PreparedSnippet prepared) {
  if (std::exchange(isAsking_, false)) {
    // Asking took the hold away, and the user may have copied something else meanwhile.
    hold_ = use_.typedKeys.begin();
    pasteboard_.save();
  }
  isPlainPaste_ = prepared.keys.empty() && !prepared.cursorRange;
  snippetText = std::move(prepared.snippetText);
  cursorRange = prepared.cursorRange;
  cursorPiece_ = prepared.cursorPiece;
  std::ranges::move(prepared.pieces, std::back_inserter(seperatedSnippetText));
  if (seperatedSnippetText.empty()) seperatedSnippetText.emplace_back();
  std::ranges::move(prepared.keys, std::back_inserter(specialKeys_));
  ownWindows_.hide();
  if (std::ranges::none_of(specialKeys_, isClipboardKey)) return putNextPiece();
  hold_->expectPause(kLongestCopy);
  pasteboard_.whenSaved(life_.guard([this] {
    pasteboardItemsForClipboardMacro = pasteboard_.saved();
    putNextPiece();
  }));
}

void Insertion::putNextPiece() {
  whenRead([this] {
    pasteboard_.whenReplaceable(life_.guard([this] {
      // The keys of a snippet may open the window that its next piece is meant for.
      if (std::exchange(keyMayMoveFocus_, false)) target_ = use_.frontWindow.current();
      const bool mayGoOn = pieceIndex_ == 0 ? mayBegin() : reachesTarget();
      if (!mayGoOn) return callOff();
      putPiece();
      deleteAbbreviationAndPaste();
    }));
  });
}

bool Insertion::mayBegin() {
  if (use_.settings.autoPasteIsEnabled() && !reachesTarget()) return false;
  if (keepTrigger() || abbreviationUsedToTriggerPaste.empty()) return true;
  logWarning("WARNING: #iNs2bRk - Keys had to be delivered before the abbreviation was erased; it stays.");
  return false;
}

bool Insertion::reachesTarget() const {
  const bool reaches = use_.frontWindow.isStill(target_);
  if (!reaches) {
    logWarning("WARNING: #iNs7wNd - Keys no longer reach the window that the snippet was meant for.");
  }
  return reaches;
}

void Insertion::putPiece() {
  if (!use_.settings.autoPasteIsEnabled()) {
    // The user will paste once, so everything has to be there.
    seperatedSnippetText = {snippetText};
    cursorRange.reset();
  }
  const AttributedString piece = std::move(seperatedSnippetText.front());
  seperatedSnippetText.pop_front();
  if (cursorRange) countKeysToCursor(piece);
  ++pieceIndex_;
  pieceStart_ += piece.size();
  ignorePaste = piece.empty();
  pieceText_ = piece.string();
  if (ignorePaste) return;
  pasteboard_.put({{pieceContents(piece, snippet->type().value_or(SnippetType::plainText))},
                   {PasteboardType(TransientType)},
                   true});
}

void Insertion::countKeysToCursor(const AttributedString& piece) {
  const auto log = [&](char step) {
    logInfo(fmt::format("numberOfKeyTypesToGetToCursorPosition {}: {}", step,
                        numberOfKeyTypesToGetToCursorPosition));
    logDebug(toUtf8(piece.string()));
  };
  if (pieceIndex_ == cursorPiece_) {
    const auto offset =
        std::min(cursorRange->location - std::min(cursorRange->location, pieceStart_), piece.size());
    numberOfKeyTypesToGetToCursorPosition =
        leftPressesOver(std::u16string_view(piece.string()).substr(offset), toolkit());
    log('A');
  } else if (pieceIndex_ > cursorPiece_) {
    numberOfKeyTypesToGetToCursorPosition += leftPressesOver(piece.string(), toolkit());
    log('B');
  }
}

void Insertion::deleteAbbreviationAndPaste() {
  if (!use_.settings.autoPasteIsEnabled()) return notifyAutoPasteOff();
  const auto& abbreviation = abbreviationUsedToTriggerPaste;
  if (!abbreviation.empty() && !std::exchange(abbreviationHasBeenRemoved, true)) {
    auto typed = std::u16string_view(abbreviation);
    // The key that completed the abbreviation never reached the application.
    if (use_.settings.abbreviationsTriggerType() == AbbreviationTriggerType::lastSymbol) {
      typed = typed.substr(0, lastGraphemeStart(typed));
    }
    const auto count = backspacesOver(typed, toolkit());
    if (count > 0)
      use_.poster.postKey(keys_.deleteKeyCode, 0, PostLocation::session, static_cast<int>(count));
  }
  postPaste();
}

void Insertion::postPaste() {
  if (!std::exchange(ignorePaste, false)) pasteOrType(pieceText_);
  // Before the pause: a click in it moves the caret away from the text.
  if (isPlainPaste_ && standsBeforeCaret_) standsBeforeCaret_(snippetText.string());
  after(use_.settings.pasteBetweenSnippetPartsDelay(), &Insertion::typeNextSpecialKey);
}

void Insertion::pasteOrType(std::u16string_view text) {
  const bool types = use_.target.profile().method == InsertionMethod::type;
  if (!types || !typePiece(use_.poster, text)) use_.poster.paste();
}

void Insertion::typeNextSpecialKey() {
  if (specialKeys_.empty()) return pasteNextPartOrFinish();
  whenRead([this] {
    if (!reachesTarget()) return callOff();
    const auto key = std::move(specialKeys_.front());
    specialKeys_.pop_front();
    if (isClipboardKey(key)) return pasteClipboard(key.type == kClipboardTextKey);
    pressSpecialKey(key);
    pasteNextPartOrFinish();
  });
}

void Insertion::pressSpecialKey(const KeyStep& key) {
  keyMayMoveFocus_ = mayMoveFocus(key);
  if (key.type == kCombinationKey) {
    if (!key.combination) return;
    use_.poster.postKey(key.combination->keyCode, key.combination->flags, PostLocation::session);
  } else if (const auto code = specialKeyCode(key.type)) {
    use_.poster.postKey(*code, 0, PostLocation::session);
  } else {
    logWarning("WARNING: #uz84KKlK - " + userText(key.type));
  }
}

void Insertion::pasteClipboard(bool textOnly) {
  std::u16string text;
  PasteboardContents contents{
      {}, {PasteboardType(autoGeneratedPasteboardType), PasteboardType(TransientType)}, true};
  for (const auto& item : pasteboardItemsForClipboardMacro) {
    auto wanted = textOnly ? onlyText(item) : item;
    if (wanted.representations().empty()) continue;
    text += toUtf16(wanted.text().value_or(std::string(kObjectReplacement)));
    contents.items.push_back(std::move(wanted));
  }
  // Pasting nothing would leave the last piece on the pasteboard to be pasted again.
  if (contents.items.empty()) return pasteNextPartOrFinish();
  if (cursorRange && pieceIndex_ > cursorPiece_) {
    numberOfKeyTypesToGetToCursorPosition += leftPressesOver(text, toolkit());
  }
  pasteboard_.whenReplaceable(life_.guard([this, text, contents = std::move(contents)]() mutable {
    pasteboard_.put(std::move(contents));
    pasteOrType(text);
    pasteNextPartOrFinish();
  }));
}

void Insertion::pasteNextPartOrFinish() {
  if (!seperatedSnippetText.empty()) {
    return after(use_.settings.pasteBetweenSnippetPartsDelay(), &Insertion::putNextPiece);
  }
  if (!cursorRange || numberOfKeyTypesToGetToCursorPosition < 1) return restoreAndFinish();
  whenRead([this] { moveCaretToCursor(); });
}

void Insertion::moveCaretToCursor() {
  if (!reachesTarget()) return restoreAndFinish();
  use_.poster.postKey(keys_.leftArrowKeyCode, 0, PostLocation::annotatedSession,
                      static_cast<int>(numberOfKeyTypesToGetToCursorPosition));
  const auto pause = use_.target.profile().pauseAfterCaretMoves;
  if (pause <= Seconds(0)) return restoreAndFinish();
  after(pause, &Insertion::restoreAndFinish);
}

void Insertion::restoreAndFinish() {
  if (!use_.settings.restorePateboardItems()) {
    pasteboard_.keepPiece();
    return end();
  }
  giveBackPasteboard();
  finishPasting();
}

std::function<Toolkit()> Insertion::toolkit() const {
  return [this] { return use_.target.toolkit(); };
}

void Insertion::giveBackPasteboard() {
  if (!use_.settings.restorePateboardItems()) return pasteboard_.keepPiece();
  const Seconds between = use_.settings.pasteBetweenSnippetPartsDelay();
  pasteboard_.giveBackAfter(between <= Seconds(0) ? kRestoreDelayWithoutPartsDelay
                                                  : std::min(between, kLongestRestoreDelay));
}

void Insertion::finishPasting() {
  ownWindows_.showLater();
  if (pastingCompletionHandler) pastingCompletionHandler(graphemeCount(snippetText.string()));
  end();
}

void Insertion::notifyAutoPasteOff() {
  pasteboard_.givePieceToUser();
  if (use_.settings.showNotificationForExpension()) use_.notifications.post(autoPasteOffNotification());
  finishPasting();
}

void Insertion::end() {
  const auto ended = std::move(ended_);
  ended();
}

void Insertion::after(Seconds delay, void (Insertion::*step)()) {
  hold_->expectPause(delay);
  use_.queue.runAfter(delay, life_.guard([this, step] { (this->*step)(); }));
}

void Insertion::whenRead(std::function<void()> next) {
  use_.pieces.whenRead(kLongestRead, life_.guard(std::move(next)));
}

}  // namespace quorlo
