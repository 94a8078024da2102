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
// afterwards. Saving again before that keeps what was saved first. Main thread.
class PasteboardKeeper {
 public:
  // The references must outlive the keeper.
  PasteboardKeeper(Pasteboard& pasteboard, MainQueue& queue) : generalPasteboard(pasteboard), queue_(queue) {}

  // Begins to copy the user's contents; another application takes its time to hand them over.
  void save();
  // Calls once the contents are saved, which may be at once.
  void whenSaved(std::function<void()> next);
  // The user's contents, as far as they could be copied.
  const std::vector<PasteboardItem>& saved() const { return pasteboardItems; }

  // Puts a piece on the pasteboard.
  void put(PasteboardContents piece);

  void giveBackAfter(Seconds delay);
  // The user is about to work with the pasteboard: the contents are given back now if that is pending.
  void leaveToUser();
  // The last piece stays, as ours. It is not saved as the user's contents later.
  void keepPiece();
  // The last piece stays, for the user to paste.
  void givePieceToUser();

 private:
  void restorePasteboardItems();
  void forget();

  Pasteboard& generalPasteboard;
  MainQueue& queue_;
  std::vector<PasteboardItem> pasteboardItems;
  bool isSaved_ = false;
  std::uint64_t readGeneration_ = 0;  // only the last read counts
  std::function<void()> whenSaved_;
  bool restoreIsPending_ = false;        // the pasteboard has a piece, and the user's contents are saved
  std::uint64_t restoreGeneration_ = 0;  // an older scheduled restore does nothing
  std::optional<std::int64_t> changeCountOfLastPiece_;
  LifeToken life_;
};

}  // namespace quorlo
