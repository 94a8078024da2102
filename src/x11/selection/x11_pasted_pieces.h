#pragma once

#include "base/life_token.h"
#include "base/subscription.h"
#include "platform/pasted_pieces.h"
#include "x11/selection/paste_tracker.h"

#include <functional>
#include <vector>

namespace quorlo {

// What the pasteboard's thread finds out, for the main thread.
class X11PastedPieces : public PastedPieces {
 public:
  // Both must outlive it.
  X11PastedPieces(PasteTracker& pastes, MainQueue& queue);

  bool lastWasRead() const override { return pastes_.lastPasteWasRead(); }
  void whenRead(Seconds patience, std::function<void()> next) override;

 private:
  void runWaiting();

  PasteTracker& pastes_;
  MainQueue& queue_;
  std::vector<std::function<void()>> waiting_;
  LifeToken life_;
  Subscription pastesObservation_;
};

}  // namespace quorlo
