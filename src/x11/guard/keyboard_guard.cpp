#include "x11/guard/keyboard_guard.h"

#include <poll.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <array>
#include <cstdio>

namespace quorlo {

namespace {

constexpr std::chrono::milliseconds kLookEvery{300};
constexpr std::chrono::milliseconds kAskAfter{300};
constexpr std::chrono::milliseconds kAnswerWithin{200};
constexpr std::chrono::milliseconds kLongestFarewell{2000};
constexpr std::chrono::milliseconds kForever{-1};

}  // namespace

KeyboardGuard::KeyboardGuard(xcb_connection_t* connection, xcb_window_t quorlo, xcb_atom_t messageType,
                             int lifeline)
    : connection_(connection),
      quorlo_(quorlo),
      messageType_(messageType),
      lifeline_(lifeline),
      root_(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root),
      keyboards_(connection) {}

bool KeyboardGuard::begin() {
  const auto* input = xcb_get_extension_data(connection_, &xcb_input_id);
  if (input == nullptr || input->present == 0) return false;
  inputOpcode_ = input->major_opcode;
  const Owned<xcb_input_xi_query_version_reply_t> version(
      xcb_input_xi_query_version_reply(connection_, xcb_input_xi_query_version(connection_, 2, 2), nullptr));
  if (!version) return false;
  window_ = xcb_generate_id(connection_);
  xcb_create_window(connection_, 0, window_, root_, 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                    XCB_COPY_FROM_PARENT, 0, nullptr);
  const struct {
    xcb_input_event_mask_t header{0, 1};  // all devices
    std::uint32_t mask = XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE |
                         XCB_INPUT_XI_EVENT_MASK_HIERARCHY;
  } rawKeys;
  xcb_input_xi_select_events(connection_, root_, 1, &rawKeys.header);
  keyboards_.find();
  TypedKeysLedger::Keys down;
  for (const auto device : keyboards_.physical()) {
    for (const auto keycode : keyboards_.downOn(device)) down.emplace(device, keycode);
  }
  ledger_.begin(std::move(down));
  return isAlive();
}

void KeyboardGuard::run() {
  while (isAlive()) {
    if (sleep() == Waking::lifelineCut) return takeOver(Quorlo::hasEnded);
    if (const auto reason = watch()) return takeOver(*reason);
  }
}

KeyboardGuard::Waking KeyboardGuard::sleep() {
  // Events may have come along with a reply.
  if (readEvents()) return Waking::event;
  const auto waking = wait(true, kForever);
  readEvents();
  // What woke this process happened just now.
  if (latestTime_) moment_ = {*latestTime_, Clock::now()};
  return waking;
}

// The server's socket is not waited for: it would wake this process several times for each key.
std::optional<KeyboardGuard::Quorlo> KeyboardGuard::watch() {
  auto pause = kLookEvery;
  do {
    if (wait(false, pause) == Waking::lifelineCut) return Quorlo::hasEnded;
    readEvents();
    if (latestTime_ && !moment_) moment_ = {*latestTime_, Clock::now()};
    if (ledger_.owed()) {
      sync();  // the answer may be among what the server could not send yet
      readMoreEvents();
    }
    pause = kLookEvery;
    if (const auto press = ledger_.owed()) {
      const auto waited = ledger_.unanswered() ? waitedForAnswer() : since(lastReport_);
      if (waited < kAskAfter) {
        pause = kAskAfter - waited;
      } else if (!question_ || question_->press != *press) {
        ask(*press);  // there are keys that Quorlo never gets to see, and expansions that take their time
        pause = kAnswerWithin;
      } else {
        pause = kAnswerWithin - since(question_->asked);
        if (pause <= Milliseconds(0)) return Quorlo::hangs;
      }
    }
  } while (isAlive() && (keysWereTyped_ || ledger_.owed()));
  return std::nullopt;
}

KeyboardGuard::Waking KeyboardGuard::wait(bool forEvents, Milliseconds atMost) const {
  std::array<pollfd, 2> waiting{pollfd{lifeline_, POLLIN, 0},
                                pollfd{forEvents ? xcb_get_file_descriptor(connection_) : -1, POLLIN, 0}};
  poll(waiting.data(), waiting.size(), static_cast<int>(atMost.count()));
  if (waiting[0].revents != 0) return Waking::lifelineCut;
  return waiting[1].revents != 0 ? Waking::event : Waking::time;
}

bool KeyboardGuard::readEvents() {
  latestTime_.reset();
  keysWereTyped_ = false;
  released_.clear();
  return readMoreEvents();
}

bool KeyboardGuard::readMoreEvents() {
  while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) handle(*event);
  return keysWereTyped_;
}

void KeyboardGuard::handle(const xcb_generic_event_t& event) {
  const auto type = event.response_type & 0x7F;
  if (type == XCB_CLIENT_MESSAGE) {
    const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
    if (message.type != messageType_) return;
    ledger_.report(reportOf(message), pressOf(message));
    lastReport_ = Clock::now();
    question_.reset();
    return;
  }
  if (type != XCB_GE_GENERIC) return;
  const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
  if (generic.extension != inputOpcode_) return;
  if (generic.event_type == XCB_INPUT_HIERARCHY) keyboards_.find();
  const bool isPress = generic.event_type == XCB_INPUT_RAW_KEY_PRESS;
  if (!isPress && generic.event_type != XCB_INPUT_RAW_KEY_RELEASE) return;
  const auto& key = reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event);
  if ((key.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) != 0) return;
  handleRawKey({isPress, key.deviceid, static_cast<std::uint8_t>(key.detail)}, key.sourceid, key.time);
}

void KeyboardGuard::handleRawKey(TypedKeysLedger::Key key, std::uint16_t source, std::uint32_t time) {
  latestTime_ = time;
  if (keyboards_.isXtest(source)) {
    ledger_.setTime(time);
  } else if (key.device == source) {
    ledger_.typed(key, time);
    keysWereTyped_ = true;
    if (!key.isPress) released_.insert(key.keycode);
  } else {
    // The session's keyboard repeats what a keyboard reports that is not grabbed.
    ledger_.passedByItself({key.isPress, source, key.keycode});
  }
}

KeyboardGuard::Milliseconds KeyboardGuard::waitedForAnswer() const {
  if (!moment_) return Milliseconds(0);
  return since(moment_->own) -
         Milliseconds(static_cast<std::int32_t>(ledger_.waitingSince() - moment_->server));
}

void KeyboardGuard::ask(PressId press) {
  question_ = {press, Clock::now()};
  const auto question = pressMessage(quorlo_, messageType_, PressReport::taken, press);
  xcb_send_event(connection_, 0, quorlo_, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&question));
  xcb_flush(connection_);
}

// From the end of the grab on keys reach the applications by themselves, so that the rest has to be quick.
void KeyboardGuard::takeOver(Quorlo reason) {
  const auto modifiers = keyboards_.heldModifierKeys();
  if (reason == Quorlo::hangs) {
    std::fputs("Quorlo did not answer a key press; its hold on the keyboard was ended.\n", stderr);
    xcb_kill_client(connection_, quorlo_);
  } else {
    waitUntilItsClientHasEnded();
  }
  holdUntilReleased(deliver(modifiers));
}

// The server carries out what Quorlo asked of it before it ended. Its client is not killed, since the server
// may have given the window's number to another one.
void KeyboardGuard::waitUntilItsClientHasEnded() const {
  const auto deadline = Clock::now() + kLongestFarewell;
  while (isAlive() && Clock::now() < deadline) {
    const Owned<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
        connection_, xcb_get_window_attributes(connection_, quorlo_), nullptr));
    if (!reply) return;
  }
}

std::set<std::uint8_t> KeyboardGuard::deliver(const std::set<std::uint8_t>& modifiers) {
  auto down = keyboards_.downOnXtest();
  readEvents();  // all that came before that answer
  const auto heldModifiers = [&](const TypedKeysLedger::Keys& keys) {
    std::set<std::uint8_t> held;
    for (const auto& [device, keycode] : keys) {
      if (modifiers.contains(keycode)) held.insert(keycode);
    }
    return held;
  };
  const auto change = [&](std::uint8_t keycode, bool isPress) {
    if (down.contains(keycode)) keyboards_.release(keycode);
    if (isPress) keyboards_.press(keycode);
    isPress ? (void)down.insert(keycode) : (void)down.erase(keycode);
  };
  // Keys that Quorlo pressed and can no longer let go would repeat for ever.
  const auto keepOnly = [&](const std::set<std::uint8_t>& held) {
    for (const auto keycode : std::set(down)) {
      if (!held.contains(keycode)) change(keycode, false);
    }
  };
  const auto heldBefore = heldModifiers(ledger_.downBefore());
  keepOnly(heldBefore);
  for (const auto keycode : heldBefore) {
    if (!down.contains(keycode)) change(keycode, true);
  }
  for (const auto& key : ledger_.undelivered()) change(key.keycode, key.isPress);
  keepOnly(heldModifiers(ledger_.downNow()));
  sync();
  return down;
}

// The keyboard that is free again says nothing of the keys that are held on it.
void KeyboardGuard::holdUntilReleased(std::set<std::uint8_t> modifiers) {
  while (!modifiers.empty() && isAlive()) {
    readEvents();
    for (const auto keycode : released_) {
      if (modifiers.erase(keycode) > 0) keyboards_.release(keycode);
    }
    xcb_flush(connection_);
    if (modifiers.empty()) return;
    pollfd events{xcb_get_file_descriptor(connection_), POLLIN, 0};
    poll(&events, 1, -1);
  }
}

void KeyboardGuard::sync() const {
  std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

}  // namespace quorlo
