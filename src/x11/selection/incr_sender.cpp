#include "x11/selection/incr_sender.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quorlo {

namespace {

constexpr std::size_t kMaxChunkBytes = std::size_t{1} << 20U;
constexpr std::size_t kRequestHeaderBytes = 64;
// A requestor that takes nothing for so long has forgotten the transfer.
constexpr std::chrono::seconds kStalledAfter{10};

void selectRequestorEvents(const XConnection& x, xcb_window_t window, std::uint32_t mask) {
  xcb_change_window_attributes(x.get(), window, XCB_CW_EVENT_MASK, &mask);
}

}  // namespace

std::size_t IncrSender::chunkBytes() const {
  const std::size_t request = std::size_t{xcb_get_maximum_request_length(x_.get())} * 4;
  return std::min(request - kRequestHeaderBytes, kMaxChunkBytes) & ~std::size_t{3};
}

void IncrSender::start(Transfer transfer) {
  const Key key{transfer.requestor, transfer.property};
  // Before the property is there: the requestor may delete it at once.
  selectRequestorEvents(x_, transfer.requestor,
                        XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
  const auto size = static_cast<std::uint32_t>(transfer.data->size());
  xcb_change_property(x_.get(), XCB_PROP_MODE_REPLACE, transfer.requestor, transfer.property, x_.atom("INCR"),
                      32, 1, &size);
  transfers_.insert_or_assign(key, State{std::move(transfer), 0, XEventLoop::Clock::now()});
  if (!timerRunning_) dropStalled();
}

void IncrSender::handleEvent(const xcb_generic_event_t& event) {
  switch (event.response_type & 0x7F) {
    case XCB_PROPERTY_NOTIFY: {
      const auto& notify = reinterpret_cast<const xcb_property_notify_event_t&>(event);
      const Key key{notify.window, notify.atom};
      if (notify.state == XCB_PROPERTY_DELETE && transfers_.contains(key)) sendNext(key);
      break;
    }
    case XCB_DESTROY_NOTIFY: {
      const auto& destroyed = reinterpret_cast<const xcb_destroy_notify_event_t&>(event);
      std::erase_if(transfers_, [&](const auto& entry) { return entry.first.first == destroyed.window; });
      break;
    }
    default:
      break;
  }
}

void IncrSender::sendNext(const Key& key) {
  auto& state = transfers_.at(key);
  state.lastActivity = XEventLoop::Clock::now();
  const auto& data = *state.transfer.data;
  const std::size_t size = std::min(chunkBytes(), data.size() - state.sent);
  const auto elements = static_cast<std::uint32_t>(size / (state.transfer.format / 8U));
  xcb_change_property(x_.get(), XCB_PROP_MODE_REPLACE, key.first, key.second, state.transfer.type,
                      state.transfer.format, elements, data.data() + state.sent);
  if (size == 0) {  // an empty property says that there is no more
    const auto finished = std::move(state.transfer.finished);
    end(key);
    finished();
    return;
  }
  if (state.sent > 0) state.transfer.progressed();
  state.sent += size;
}

void IncrSender::end(const Key& key) {
  transfers_.erase(key);
  const bool hasAnother =
      std::ranges::any_of(transfers_, [&](const auto& entry) { return entry.first.first == key.first; });
  if (!hasAnother) selectRequestorEvents(x_, key.first, XCB_EVENT_MASK_NO_EVENT);
}

void IncrSender::dropStalled() {
  const auto now = XEventLoop::Clock::now();
  std::erase_if(transfers_,
                [&](const auto& entry) { return entry.second.lastActivity + kStalledAfter <= now; });
  timerRunning_ = !transfers_.empty();
  if (timerRunning_) loop_.runAt(now + kStalledAfter, [this] { dropStalled(); });
}

}  // namespace quorlo
