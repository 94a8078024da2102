#include "x11/selection/late_paste_watch.h"

#include <xcb/xinput.h>

#include <algorithm>
#include <array>
#include <set>
#include <utility>

namespace quorlo {

namespace {

// Keys that a paste by hand begins with, as keysyms.
constexpr std::array<xcb_keysym_t, 11> kChordKeys{
    0xFFE3,     0xFFE4,  // Control
    0xFFE7,     0xFFE8,  // Meta
    0xFFE9,     0xFFEA,  // Alt
    0xFFEB,     0xFFEC,  // Super
    0xFF63,              // Insert
    0xFF67,              // Menu
    0x1008FF6D,          // Paste
};

}  // namespace

LatePasteWatch::LatePasteWatch(XConnection& x, Over gone, Over ignored)
    : x_(x), gone_(std::move(gone)), ignored_(std::move(ignored)) {
  const auto* input = x_.extension(xcb_input_id);
  if (input == nullptr) return;
  const auto version = x_.reply(xcb_input_xi_query_version_reply, xcb_input_xi_query_version(x_.get(), 2, 2));
  if (version && version->major_version >= 2) inputOpcode_ = input->major_opcode;
}

void LatePasteWatch::follow(const std::vector<PasteTracker::Late>& pastes) {
  std::set<xcb_window_t> left;
  std::erase_if(watched_, [&](const auto& entry) {
    if (std::ranges::find(pastes, entry.first, &PasteTracker::Late::paste) != pastes.end()) return false;
    left.insert(entry.second.window);
    return true;
  });
  for (const auto& paste : pastes) {
    left.erase(paste.target.window);
    if (!watched_.contains(paste.paste)) begin(paste.paste, paste.target.window);
  }
  for (const auto window : left) x_.selectStructureEvents(window, false);
  selectEvents();
}

bool LatePasteWatch::isIgnored(PasteTracker::PasteId paste) const {
  const auto found = watched_.find(paste);
  return found != watched_.end() && !found->second.isBusy;
}

void LatePasteWatch::begin(PasteTracker::PasteId paste, xcb_window_t window) {
  auto& watched = watched_[paste];
  watched.window = window;
  if (window == XCB_WINDOW_NONE) return;
  x_.selectStructureEvents(window, true);
  const auto protocols = x_.property(window, x_.atom("WM_PROTOCOLS"));
  // Of a program that knows no pings nothing is known.
  watched.isBusy = protocols && std::ranges::count(protocols->cardinals(), x_.atom("_NET_WM_PING")) > 0;
  if (!watched.isBusy) return;
  selectEvents();  // before the answer can come
  std::array<char, 32> wire{};
  auto& ping = reinterpret_cast<xcb_client_message_event_t&>(wire);
  ping.response_type = XCB_CLIENT_MESSAGE;
  ping.format = 32;
  ping.window = window;
  ping.type = x_.atom("WM_PROTOCOLS");
  ping.data.data32[0] = x_.atom("_NET_WM_PING");
  ping.data.data32[2] = window;
  xcb_send_event(x_.get(), 0, window, XCB_EVENT_MASK_NO_EVENT, wire.data());
}

void LatePasteWatch::selectEvents() {
  const bool wantsPongs =
      std::ranges::any_of(watched_, [](const auto& entry) { return entry.second.isBusy; });
  if (std::exchange(seesPongs_, wantsPongs) != wantsPongs) {
    const std::uint32_t mask = wantsPongs ? XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY : XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(x_.get(), x_.root(), XCB_CW_EVENT_MASK, &mask);
  }
  const bool wantsInput = !watched_.empty() && inputOpcode_ != 0;
  if (std::exchange(seesInput_, wantsInput) == wantsInput) return;
  struct {
    xcb_input_event_mask_t head;
    std::uint32_t mask;
  } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
              wantsInput ? static_cast<std::uint32_t>(XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS |
                                                      XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS)
                         : 0U};
  xcb_input_xi_select_events(x_.get(), x_.root(), 1, &selection.head);
}

void LatePasteWatch::handleEvent(const xcb_generic_event_t& event) {
  if (watched_.empty()) return;
  switch (event.response_type & 0x7F) {
    case XCB_CLIENT_MESSAGE: {
      const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
      if (message.type != x_.atom("WM_PROTOCOLS") || message.data.data32[0] != x_.atom("_NET_WM_PING"))
        return;
      for (auto& [paste, watched] : watched_) {
        if (watched.window == message.data.data32[2]) watched.isBusy = false;
      }
      return selectEvents();
    }
    case XCB_DESTROY_NOTIFY: {
      const auto window = reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
      return end(gone_, [window](const Watched& watched) { return watched.window == window; });
    }
    case XCB_GE_GENERIC: {
      const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
      if (generic.extension != inputOpcode_) return;
      if (generic.event_type == XCB_INPUT_RAW_BUTTON_PRESS) return userActs();
      const auto& key = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
      if (generic.event_type == XCB_INPUT_RAW_KEY_PRESS &&
          beginsChord(static_cast<xcb_keycode_t>(key.detail))) {
        userActs();
      }
      return;
    }
    default:
      return;
  }
}

void LatePasteWatch::userActs() {
  const auto active = x_.property(x_.root(), x_.atom("_NET_ACTIVE_WINDOW"));
  const auto windows = active ? active->cardinals() : std::vector<std::uint32_t>();
  if (windows.empty()) return;
  end(ignored_, [window = windows.front()](const Watched& watched) {
    return !watched.isBusy && watched.window == window;
  });
}

bool LatePasteWatch::beginsChord(xcb_keycode_t key) const {
  const auto mapping = x_.reply(xcb_get_keyboard_mapping_reply, xcb_get_keyboard_mapping(x_.get(), key, 1));
  if (!mapping) return false;
  const auto* first = xcb_get_keyboard_mapping_keysyms(mapping.get());
  const auto* last = first + xcb_get_keyboard_mapping_keysyms_length(mapping.get());
  return std::any_of(first, last,
                     [](xcb_keysym_t keysym) { return std::ranges::count(kChordKeys, keysym) > 0; });
}

void LatePasteWatch::end(const Over& how, const std::function<bool(const Watched&)>& isOver) {
  std::vector<PasteTracker::PasteId> over;
  for (const auto& [paste, watched] : watched_) {
    if (isOver(watched)) over.push_back(paste);
  }
  for (const auto paste : over) how(paste);
}

}  // namespace quorlo
