#include "x11/selection/selection_reader.h"

#include "base/log.h"
#include "text/utf.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace quorlo {

namespace {

constexpr std::string_view kTargets = "TARGETS";
constexpr std::string_view kPropertyName = "QUORLO_SELECTION";
constexpr std::chrono::seconds kDrainPatience{5};

std::string_view asText(const std::vector<std::uint8_t>& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

PasteboardData utf8FromLatin1(const PasteboardData& latin1) {
  const std::string utf8 = toUtf8(std::u16string(latin1.begin(), latin1.end()));
  return {utf8.begin(), utf8.end()};
}

// Readers inside the program ask for text by one name only; owners of the older kind do not know it.
void addPlainText(PasteboardItem& item) {
  if (item.data(pasteboard_type::kPlainText)) return;
  for (const std::string_view name : {"UTF8_STRING", "text/plain"}) {
    if (auto data = item.data(name); data && toUtf16Strict(asText(*data))) {
      item.setData(PasteboardType(pasteboard_type::kPlainText), std::move(*data));
      return;
    }
  }
  if (const auto data = item.data("STRING")) {
    item.setData(PasteboardType(pasteboard_type::kPlainText), utf8FromLatin1(*data));
  }
}

}  // namespace

SelectionReader::~SelectionReader() {
  for (auto& read : reads_) abandon(read);
  for (const auto& drain : drains_) xcb_destroy_window(x_.get(), drain.window);
}

void SelectionReader::read(xcb_atom_t selection, ReadBudget budget, Completion completion) {
  const auto deadline = XEventLoop::Clock::now() + budget.time;
  auto& read = reads_.emplace_back(
      Read{selection, budget, std::move(completion), deadline, 0, budget.bytes, true, {}});
  read.timer = loop_.runAt(deadline, [this, &read] { finish(read); });
  const auto owner = x_.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(x_.get(), selection));
  if (!owner || owner->owner == XCB_WINDOW_NONE) return finish(read);
  ask(read, {std::string(kTargets)});
}

void SelectionReader::handleEvent(const xcb_generic_event_t& event) {
  const auto type = event.response_type & 0x7F;
  if (type == XCB_SELECTION_NOTIFY) {
    const auto& notify = reinterpret_cast<const xcb_selection_notify_event_t&>(event);
    const bool refused = notify.property == XCB_ATOM_NONE;
    if (drain(notify.requestor, refused)) return;
    for (auto& read : reads_) {
      const auto fetch = std::ranges::find(read.fetches, notify.requestor, &Fetch::window);
      if (fetch == read.fetches.end() || fetch->state != State::waiting) continue;
      if (refused) {
        fetch->state = State::refused;
      } else {
        receive(read, *fetch, true);
      }
      return advance(read);
    }
  } else if (type == XCB_PROPERTY_NOTIFY) {
    const auto& notify = reinterpret_cast<const xcb_property_notify_event_t&>(event);
    if (notify.state != XCB_PROPERTY_NEW_VALUE) return;
    for (auto& read : reads_) {
      const auto fetch = std::ranges::find(read.fetches, notify.window, &Fetch::window);
      if (fetch == read.fetches.end()) continue;
      if (fetch->state != State::receiving) return;
      receive(read, *fetch, false);
      return advance(read);
    }
    // Before the owner has sent its answer the window must stay.
    const auto drained = std::ranges::find(drains_, notify.window, &Drain::window);
    if (drained != drains_.end() && drained->receiving) drain(notify.window, false);
  }
}

void SelectionReader::ownerChanged(xcb_atom_t selection, xcb_window_t newOwner) {
  for (auto it = reads_.begin(); it != reads_.end();) {
    auto& read = *it++;  // finishing takes it off the list
    if (read.selection != selection) continue;
    if (newOwner == XCB_WINDOW_NONE) {
      finish(read);
      continue;
    }
    abandon(read);
    read.bytesLeft = read.budget.bytes;
    read.askedForTargets = true;
    ask(read, {std::string(kTargets)});
  }
}

void SelectionReader::ask(Read& read, std::vector<std::string> targets) {
  const auto property = x_.atom(kPropertyName);
  const auto atoms = x_.atoms(targets);
  for (std::size_t i = 0; i < targets.size(); ++i) {
    const auto window = x_.createMessageWindow(XCB_EVENT_MASK_PROPERTY_CHANGE);
    xcb_convert_selection(x_.get(), window, read.selection, atoms[i], property, XCB_CURRENT_TIME);
    read.fetches.push_back({window, std::move(targets[i]), State::waiting, {}, {}});
  }
}

// Takes what stands in the fetch's property: the data, the announcement of an incremental transfer, or a
// piece of one. Deleting the property is the sign for the owner to go on.
void SelectionReader::receive(Read& read, Fetch& fetch, bool isFirst) {
  const auto property = x_.atom(kPropertyName);
  const auto words = static_cast<std::uint32_t>(read.bytesLeft / 4 + 1);
  const auto value = x_.reply(xcb_get_property_reply, xcb_get_property(x_.get(), 1, fetch.window, property,
                                                                       XCB_GET_PROPERTY_TYPE_ANY, 0, words));
  if (!value || value->type == XCB_ATOM_NONE) {
    if (isFirst) fetch.state = State::refused;
    return;
  }
  const auto size = static_cast<std::size_t>(xcb_get_property_value_length(value.get()));
  const auto* first = static_cast<const std::uint8_t*>(xcb_get_property_value(value.get()));
  if (isFirst && value->type == x_.atom("INCR")) {
    fetch.state = State::receiving;
    return;
  }
  if (!isFirst && size == 0 && value->bytes_after == 0) {
    fetch.state = State::complete;
    return;
  }
  if (value->bytes_after > 0 || size > read.bytesLeft) {
    read.bytesLeft += fetch.bytes.size();
    fetch.bytes.clear();
    // A property that was too long to be read whole is still there: the owner waits for its deletion.
    if (value->bytes_after > 0) xcb_delete_property(x_.get(), fetch.window, property);
    if (!isFirst) {
      drains_.push_back({std::exchange(fetch.window, XCB_WINDOW_NONE), true, XEventLoop::Clock::now()});
      if (!drainTimerRunning_) dropStalledDrains();
    }
    fetch.state = State::tooLarge;
    return;
  }
  read.bytesLeft -= size;
  fetch.bytes.insert(fetch.bytes.end(), first, first + size);
  fetch.form = {x_.atomName(value->type), value->format};
  fetch.state = isFirst ? State::complete : State::receiving;
}

void SelectionReader::advance(Read& read) {
  if (std::ranges::any_of(read.fetches, &Fetch::isOpen)) return;
  if (!read.askedForTargets) return finish(read);
  read.askedForTargets = false;
  const Fetch answer = std::move(read.fetches.front());
  read.fetches.clear();
  xcb_destroy_window(x_.get(), answer.window);
  if (answer.state == State::complete) {
    const XProperty list{XCB_ATOM_ATOM, answer.form.format, answer.bytes};
    auto targets = targetsToSave(x_.atomNames(list.cardinals()));
    if (targets.empty()) return finish(read);
    ask(read, std::move(targets));
  } else {
    // An owner that knows only text and does not say so.
    ask(read, {"UTF8_STRING", "STRING"});
  }
}

void SelectionReader::abandon(Read& read) {
  for (auto& fetch : read.fetches) {
    if (fetch.window == XCB_WINDOW_NONE) continue;
    if (fetch.isOpen()) {
      drains_.push_back({fetch.window, fetch.state == State::receiving, XEventLoop::Clock::now()});
    } else {
      xcb_destroy_window(x_.get(), fetch.window);
    }
  }
  read.fetches.clear();
  if (!drains_.empty() && !drainTimerRunning_) dropStalledDrains();
}

void SelectionReader::finish(Read& read) {
  PasteboardItem item;
  SelectionCopy copy;
  std::string leftOut;
  for (auto& fetch : read.fetches) {
    if (fetch.state == State::complete && !read.askedForTargets) {
      if (fetch.form.type != fetch.target || fetch.form.format != 8) copy.forms[fetch.target] = fetch.form;
      item.setData(fetch.target, std::move(fetch.bytes));
      continue;
    }
    const std::string_view reason = fetch.state == State::refused    ? "refused by its owner"
                                    : fetch.state == State::tooLarge ? "larger than the budget"
                                                                     : "not handed over in time";
    leftOut += fmt::format("{}{} ({})", leftOut.empty() ? "" : ", ",
                           read.askedForTargets ? "everything" : fetch.target, reason);
  }
  if (!leftOut.empty()) {
    logWarning(fmt::format("WARNING: #x11sR1; Left out of the copy of the selection {}: {}.",
                           x_.atomName(read.selection), leftOut));
  }
  if (!item.representations().empty()) {
    addPlainText(item);
    copy.items.push_back(std::move(item));
  }
  abandon(read);
  loop_.cancel(read.timer);
  const auto completion = std::move(read.completion);
  reads_.remove_if([&](const Read& each) { return &each == &read; });
  completion(std::move(copy));
}

bool SelectionReader::drain(xcb_window_t window, bool refused) {
  const auto found = std::ranges::find(drains_, window, &Drain::window);
  if (found == drains_.end()) return false;
  const auto value = x_.reply(
      xcb_get_property_reply,
      xcb_get_property(x_.get(), 1, window, x_.atom(kPropertyName), XCB_GET_PROPERTY_TYPE_ANY, 0, 0));
  xcb_delete_property(x_.get(), window, x_.atom(kPropertyName));
  const bool isEmpty = !value || value->bytes_after == 0;
  const bool incremental = value && value->type == x_.atom("INCR");
  found->receiving = found->receiving || incremental;
  found->lastActivity = XEventLoop::Clock::now();
  if (refused || !found->receiving || (isEmpty && !incremental)) {
    xcb_destroy_window(x_.get(), window);
    drains_.erase(found);
  }
  return true;
}

void SelectionReader::dropStalledDrains() {
  const auto now = XEventLoop::Clock::now();
  std::erase_if(drains_, [&](const Drain& drain) {
    if (drain.lastActivity + kDrainPatience > now) return false;
    xcb_destroy_window(x_.get(), drain.window);
    return true;
  });
  drainTimerRunning_ = !drains_.empty();
  if (drainTimerRunning_) loop_.runAt(now + kDrainPatience, [this] { dropStalledDrains(); });
}

}  // namespace quorlo
