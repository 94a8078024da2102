#include "x11/selection/abandoned_transfers.h"

#include <algorithm>
#include <chrono>

namespace quorlo {

namespace {

constexpr std::chrono::seconds kStalledAfter{5};

}  // namespace

AbandonedTransfers::~AbandonedTransfers() {
  for (const auto& transfer : transfers_) xcb_destroy_window(x_.get(), transfer.window);
}

void AbandonedTransfers::add(xcb_window_t window, bool receiving) {
  transfers_.push_back({window, receiving, XEventLoop::Clock::now()});
  if (!timerRunning_) dropStalled();
}

bool AbandonedTransfers::answered(xcb_window_t window, bool refused) {
  const auto found = std::ranges::find(transfers_, window, &Transfer::window);
  if (found == transfers_.end()) return false;
  goOn(*found, refused);
  return true;
}

bool AbandonedTransfers::written(xcb_window_t window) {
  const auto found = std::ranges::find(transfers_, window, &Transfer::window);
  if (found == transfers_.end()) return false;
  // Before the owner has sent its answer the window must stay.
  if (found->receiving) goOn(*found, false);
  return true;
}

void AbandonedTransfers::goOn(Transfer& transfer, bool refused) {
  const auto property = x_.atom(kSelectionProperty);
  const auto value = x_.reply(xcb_get_property_reply, xcb_get_property(x_.get(), 1, transfer.window, property,
                                                                       XCB_GET_PROPERTY_TYPE_ANY, 0, 0));
  // The deletion tells the owner to go on.
  xcb_delete_property(x_.get(), transfer.window, property);
  const bool isEmpty = !value || value->bytes_after == 0;
  const bool begins = value && value->type == x_.atom("INCR");
  transfer.receiving = transfer.receiving || begins;
  transfer.lastActivity = XEventLoop::Clock::now();
  if (!refused && transfer.receiving && (begins || !isEmpty)) return;
  xcb_destroy_window(x_.get(), transfer.window);
  std::erase_if(transfers_, [&](const Transfer& each) { return &each == &transfer; });
}

void AbandonedTransfers::dropStalled() {
  const auto now = XEventLoop::Clock::now();
  std::erase_if(transfers_, [&](const Transfer& transfer) {
    if (transfer.lastActivity + kStalledAfter > now) return false;
    xcb_destroy_window(x_.get(), transfer.window);
    return true;
  });
  timerRunning_ = !transfers_.empty();
  if (timerRunning_) loop_.runAt(now + kStalledAfter, [this] { dropStalled(); });
}

}  // namespace quorlo
