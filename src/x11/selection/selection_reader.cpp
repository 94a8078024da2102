#include "x11/selection/selection_reader.h"

#include "base/log.h"
#include "text/utf.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace quorlo {

namespace {

using Reason = PasteboardLoss::Reason;

constexpr std::string_view kTargets = "TARGETS";
// An owner that has not told its targets by then is asked for the usual ones, so that the requests are in
// its queue when the selection is taken.
constexpr std::chrono::milliseconds kGuessAfter{150};

const std::vector<std::string>& usualTargets() {
  static const std::vector<std::string> kNames{"UTF8_STRING",
                                               "STRING",
                                               std::string(pasteboard_type::kHtml),
                                               std::string(pasteboard_type::kPng),
                                               "text/uri-list",
                                               "x-special/gnome-copied-files"};
  return kNames;
}

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

std::string_view description(Reason reason) {
  switch (reason) {
    case Reason::refused:
      return "refused by its owner";
    case Reason::notAnswered:
      return "not handed over in time";
    case Reason::ownerEnded:
      return "not handed over before its owner ended";
    case Reason::tooLarge:
      return "larger than the budget";
  }
  return "";
}

}  // namespace

SelectionReader::Fetch* SelectionReader::Read::find(xcb_window_t window) {
  const auto found = std::ranges::find(fetches, window, &Fetch::window);
  return found != fetches.end() ? &*found : nullptr;
}

bool SelectionReader::Read::hasAskedFor(std::string_view target) const {
  return std::ranges::find(fetches, target, &Fetch::target) != fetches.end();
}

// With the owner's list at hand, what was asked for by a guess counts only when it is on the list.
bool SelectionReader::Read::isContent(std::string_view target) const {
  return target != kTargets && (wanted.empty() || std::ranges::find(wanted, target) != wanted.end());
}

std::ptrdiff_t SelectionReader::Read::rankOf(std::string_view target) const {
  return std::ranges::find(wanted, target) - wanted.begin();
}

SelectionReader::~SelectionReader() {
  for (auto& read : reads_) abandon(read);
}

void SelectionReader::read(xcb_atom_t selection, ReadBudget budget, Reading reading) {
  auto& read = reads_.emplace_back();
  read.selection = selection;
  read.budget = budget;
  read.reading = std::move(reading);
  read.ownersTimeTimer =
      loop_.runAt(XEventLoop::Clock::now() + kOwnersTime, [this, &read] { letBeTaken(read); });
  start(read);
}

void SelectionReader::start(Read& read) {
  const auto now = XEventLoop::Clock::now();
  read.bytesLeft = read.budget.bytes;
  read.lastProgress = now;
  const auto owner =
      x_.reply(xcb_get_selection_owner_reply, xcb_get_selection_owner(x_.get(), read.selection));
  if (!owner || owner->owner == XCB_WINDOW_NONE) return finish(read);
  watchOwner(read, owner->owner);
  ask(read, {std::string(kTargets)});
  read.guessTimer = loop_.runAt(now + kGuessAfter, [this, &read] { guess(read); });
  watchSilence(read);
}

void SelectionReader::handleEvent(const xcb_generic_event_t& event) {
  const auto type = event.response_type & 0x7F;
  if (type == XCB_SELECTION_NOTIFY) {
    const auto& notify = reinterpret_cast<const xcb_selection_notify_event_t&>(event);
    const bool refused = notify.property == XCB_ATOM_NONE;
    if (abandoned_.answered(notify.requestor, refused)) return;
    for (auto& read : reads_) {
      auto* fetch = read.find(notify.requestor);
      if (fetch == nullptr || fetch->state != State::waiting) continue;
      if (refused) {
        fetch->state = State::refused;
      } else {
        receive(read, *fetch, true);
      }
      return advance(read);
    }
  } else if (type == XCB_PROPERTY_NOTIFY) {
    const auto& notify = reinterpret_cast<const xcb_property_notify_event_t&>(event);
    if (notify.state != XCB_PROPERTY_NEW_VALUE || abandoned_.written(notify.window)) return;
    for (auto& read : reads_) {
      auto* fetch = read.find(notify.window);
      if (fetch == nullptr) continue;
      if (fetch->state != State::receiving) return;
      receive(read, *fetch, false);
      return advance(read);
    }
  } else if (type == XCB_DESTROY_NOTIFY) {
    ownerEnded(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
  }
}

void SelectionReader::ownerChanged(xcb_atom_t selection, xcb_window_t newOwner) {
  for (auto it = reads_.begin(); it != reads_.end();) {
    auto& read = *it++;  // finishing takes it off the list
    if (read.selection != selection) continue;
    if (newOwner == XCB_WINDOW_NONE) {
      ownerEnded(read.owner);
      return;
    }
    if (read.mayBeTaken || read.isTaken) continue;
    abandon(read);
    read.knowsWanted = false;
    read.wanted.clear();
    start(read);
  }
}

void SelectionReader::ownerEnded(xcb_window_t owner) {
  for (auto it = reads_.begin(); it != reads_.end();) {
    auto& read = *it++;
    if (read.owner != owner) continue;
    read.ownerEnded = true;
    finish(read);
  }
}

void SelectionReader::taken(xcb_atom_t selection) {
  for (auto& read : reads_) {
    if (read.selection == selection) read.isTaken = true;
  }
}

void SelectionReader::ask(Read& read, const std::vector<std::string>& targets) {
  const auto property = x_.atom(kSelectionProperty);
  const auto atoms = x_.atoms(targets);
  for (std::size_t i = 0; i < targets.size(); ++i) {
    if (read.hasAskedFor(targets[i])) continue;
    const auto window = x_.createMessageWindow(XCB_EVENT_MASK_PROPERTY_CHANGE);
    xcb_convert_selection(x_.get(), window, read.selection, atoms[i], property, XCB_CURRENT_TIME);
    read.fetches.push_back({window, targets[i], State::waiting, {}, {}});
  }
}

void SelectionReader::guess(Read& read) {
  if (!read.isTaken) ask(read, usualTargets());
}

void SelectionReader::letBeTaken(Read& read) {
  if (std::exchange(read.mayBeTaken, true)) return;
  if (read.reading.mayBeTaken) read.reading.mayBeTaken();
}

// Takes what stands in the fetch's property: the data, the announcement of an incremental transfer, or a
// piece of one. Deleting the property is the sign for the owner to go on.
void SelectionReader::receive(Read& read, Fetch& fetch, bool isFirst) {
  read.lastProgress = XEventLoop::Clock::now();
  const auto property = x_.atom(kSelectionProperty);
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
    fetch.bytes = {};
    // A property that was too long to be read whole is still there: the owner waits for its deletion.
    if (value->bytes_after > 0) xcb_delete_property(x_.get(), fetch.window, property);
    if (!isFirst) abandoned_.add(std::exchange(fetch.window, XCB_WINDOW_NONE), true);
    fetch.state = State::tooLarge;
    return;
  }
  read.bytesLeft -= size;
  fetch.bytes.insert(fetch.bytes.end(), first, first + size);
  fetch.form = {x_.atomName(value->type), value->format};
  fetch.state = isFirst ? State::complete : State::receiving;
}

void SelectionReader::advance(Read& read) {
  if (!read.knowsWanted && !read.fetches.front().isOpen()) {
    learnTargets(read);
    if (!read.offered.empty() && read.wanted.empty()) return finish(read);
  }
  askForAnotherPicture(read);
  if (read.knowsWanted && std::ranges::none_of(read.fetches, &Fetch::isOpen)) finish(read);
}

void SelectionReader::learnTargets(Read& read) {
  const auto& answer = read.fetches.front();
  read.knowsWanted = true;
  loop_.cancel(read.guessTimer);
  read.wanted.clear();
  if (answer.state == State::complete) {
    const XProperty list{XCB_ATOM_ATOM, answer.form.format, answer.bytes};
    read.offered = x_.atomNames(list.cardinals());
    read.wanted = targetsToSave(read.offered);
    if (!read.isTaken) ask(read, read.wanted);
  } else if (!read.isTaken) {
    // An owner that knows only text and does not say so.
    ask(read, {"UTF8_STRING", "STRING"});
  }
  letBeTaken(read);
}

// Owners refuse encodings that they offer; the next one offered takes the place of a refused one.
void SelectionReader::askForAnotherPicture(Read& read) {
  bool isRefused = false;
  for (const auto& fetch : read.fetches) {
    if (!isPicture(fetch.target)) continue;
    if (fetch.state != State::refused) return;
    isRefused = true;
  }
  const auto next = std::ranges::find_if(read.offered, [&](const std::string& target) {
    return isPicture(target) && !read.hasAskedFor(target);
  });
  if (!isRefused || read.isTaken || next == read.offered.end()) return;
  std::ranges::replace_if(read.wanted, isPicture, *next);
  ask(read, {*next});
}

void SelectionReader::abandon(Read& read) {
  for (auto& fetch : read.fetches) {
    if (fetch.window == XCB_WINDOW_NONE) continue;
    if (fetch.isOpen() && !read.ownerEnded) {
      abandoned_.add(fetch.window, fetch.state == State::receiving);
    } else {
      xcb_destroy_window(x_.get(), fetch.window);
    }
  }
  read.fetches.clear();
  watchOwner(read, XCB_WINDOW_NONE);
  for (const auto timer : {read.guessTimer, read.silenceTimer}) loop_.cancel(timer);
}

void SelectionReader::finish(Read& read) {
  SelectionCopy copy;
  copy.losses = lossesOf(read);
  logLosses(read, copy.losses);
  PasteboardItem item;
  std::ranges::stable_sort(read.fetches, {}, [&](const Fetch& fetch) { return read.rankOf(fetch.target); });
  for (auto& fetch : read.fetches) {
    if (fetch.state != State::complete || !read.isContent(fetch.target)) continue;
    if (fetch.form.type != fetch.target || fetch.form.format != 8) copy.forms[fetch.target] = fetch.form;
    item.setData(fetch.target, std::move(fetch.bytes));
  }
  if (!item.representations().empty()) {
    addPlainText(item);
    copy.items.push_back(std::move(item));
  }
  abandon(read);
  loop_.cancel(read.ownersTimeTimer);
  letBeTaken(read);
  const auto completed = std::move(read.reading.completed);
  reads_.remove_if([&](const Read& each) { return &each == &read; });
  completed(std::move(copy));
}

std::vector<PasteboardLoss> SelectionReader::lossesOf(const Read& read) const {
  std::vector<PasteboardLoss> losses;
  const auto unanswered = read.ownerEnded ? Reason::ownerEnded : Reason::notAnswered;
  if (!read.knowsWanted && !read.fetches.empty()) losses.push_back({{}, unanswered});
  for (const auto& fetch : read.fetches) {
    if (fetch.state == State::complete || !read.isContent(fetch.target)) continue;
    // Of an owner that does not tell its targets nothing is known to be missing.
    if (read.wanted.empty() && (fetch.state == State::refused || !read.knowsWanted)) continue;
    losses.push_back({fetch.target, fetch.state == State::refused    ? Reason::refused
                                    : fetch.state == State::tooLarge ? Reason::tooLarge
                                                                     : unanswered});
  }
  for (const auto& target : read.wanted) {
    if (!read.hasAskedFor(target)) losses.push_back({target, unanswered});
  }
  const bool hasText = std::ranges::any_of(read.fetches, [](const Fetch& fetch) {
    return fetch.state == State::complete && isTextName(fetch.target);
  });
  if (hasText) std::erase_if(losses, [](const PasteboardLoss& loss) { return isTextName(loss.type); });
  return losses;
}

void SelectionReader::logLosses(const Read& read, const std::vector<PasteboardLoss>& losses) const {
  if (losses.empty()) return;
  std::string text;
  for (const auto& loss : losses) {
    text += fmt::format("{}{} ({})", text.empty() ? "" : ", ", loss.type.empty() ? "everything" : loss.type,
                        description(loss.reason));
  }
  logWarning(fmt::format("WARNING: #x11sR1; Left out of the copy of the selection {}: {}.",
                         x_.atomName(read.selection), text));
}

void SelectionReader::watchSilence(Read& read) {
  const auto due = read.lastProgress + read.budget.silence;
  if (due <= XEventLoop::Clock::now()) return finish(read);
  read.silenceTimer = loop_.runAt(due, [this, &read] { watchSilence(read); });
}

// The owner's end is noticed by its window: once the selection is taken, the server reports nothing else.
void SelectionReader::watchOwner(Read& read, xcb_window_t owner) {
  const auto former = std::exchange(read.owner, owner);
  const auto isWatched = [this](xcb_window_t window) {
    return std::ranges::find(reads_, window, &Read::owner) != reads_.end();
  };
  if (owner != XCB_WINDOW_NONE) x_.selectStructureEvents(owner, true);
  if (former != XCB_WINDOW_NONE && !isWatched(former)) x_.selectStructureEvents(former, false);
}

}  // namespace quorlo
