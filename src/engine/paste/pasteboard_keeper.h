#pragma once

#include "base/life_token.h"
#include "platform/main_queue.h"
#include "platform/pasteboard.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace quorlo {

// Saves what the user has on the pasteboard before pieces of snippets are put there, and gives it back
// afterwards. Saving again before that keeps what was saved first. Contents that another program puts there
// in between are the user's from then on: they are saved before the next piece, and stay after the last.
// Main thread.
class PasteboardKeeper {
 public:
  // The references must outlive the keeper. `couldNotGiveBack` is called when the user's contents are lost
  // because their owner did not hand them over; not again until some have been given back whole.
  PasteboardKeeper(Pasteboard& pasteboard, MainQueue& queue, std::function<void()> couldNotGiveBack)
      : generalPasteboard(pasteboard), queue_(queue), couldNotGiveBack_(std::move(couldNotGiveBack)) {}

  // Begins to copy the user's contents; another application takes its time to hand them over.
  void save();
  // Calls once a piece may be put, which may be at once: the copy may still be on its way.
  void whenReplaceable(std::function<void()> next);
  // Calls once the copy is complete, which may be at once.
  void whenSaved(std::function<void()> next);
  // The user's contents, as far as they could be copied.
  const std::vector<PasteboardItem>& saved() const { return pasteboardItems; }

  // Puts a piece on the pasteboard.
  void put(PasteboardContents piece);

  // Gives the contents back after the delay, or as soon as the copy is complete after that.
  void giveBackAfter(Seconds delay);
  // The user is about to work with the pasteboard: the contents are given back now if that is pending.
  void leaveToUser();
  // The last piece stays, as ours. It is not saved as the user's contents later.
  void keepPiece();
  // The last piece stays, for the user to paste.
  void givePieceToUser();

 private:
  enum class Copy { none, asked, replaceable, complete };

  void read();
  void completed(PasteboardCopy copy);
  void restorePasteboardItems();
  void forget();
  bool hasPiece() const { return generalPasteboard.changeCount() == changeCountOfLastPiece_; }

  Pasteboard& generalPasteboard;
  MainQueue& queue_;
  std::function<void()> couldNotGiveBack_;
  bool wasTold_ = false;

  Copy copy_ = Copy::none;
  std::vector<PasteboardItem> pasteboardItems;
  bool isWhole_ = true;
  std::int64_t safeChangeCount_ = 0;  // of the contents that may be replaced: copied ones, or our own piece
  std::function<void()> whenReplaceable_;
  std::function<void()> whenSaved_;
  std::uint64_t readGeneration_ = 0;  // only the last read counts

  std::optional<std::int64_t> changeCountOfLastPiece_;
  bool restoreIsPending_ = false;        // the pasteboard has a piece, and the user's contents are with us
  bool restoreIsDue_ = false;            // and only the end of the copy is waited for
  std::uint64_t restoreGeneration_ = 0;  // an older scheduled restore does nothing
  LifeToken life_;
};

}  // namespace quorlo
