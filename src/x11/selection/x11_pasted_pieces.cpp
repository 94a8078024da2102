#include "x11/selection/x11_pasted_pieces.h"

#include <utility>

namespace quorlo {

X11PastedPieces::X11PastedPieces(PasteTracker& pastes, MainQueue& queue) : pastes_(pastes), queue_(queue) {
  const auto changed = life_.guard([this] { runWaiting(); });
  pastesObservation_ = pastes.observe([&queue, changed] { queue.run(changed); });
}

void X11PastedPieces::whenRead(Seconds patience, std::function<void()> next) {
  if (!pastes_.hasUnreadPaste()) return next();
  waiting_.push_back(std::move(next));
  queue_.runAfter(patience, life_.guard([this, last = pastes_.lastPaste()] { pastes_.stopAwaiting(last); }));
}

void X11PastedPieces::runWaiting() {
  if (waiting_.empty() || pastes_.hasUnreadPaste()) return;
  for (const auto& next : std::exchange(waiting_, {})) next();
}

}  // namespace quorlo
