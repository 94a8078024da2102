#include "x11/keyboard/keyboard_session.h"

#include "base/log.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace quorlo {

namespace {

constexpr std::string_view kWatching = "Watching the keyboards.";

// As applications choose their Compose sequences.
std::string composeLocale() {
  for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    if (const char* value = std::getenv(variable); value != nullptr && *value != '\0') return value;
  }
  return "C";
}

// Lets the server carry out what was pressed before it is given more, so that what the keyboard's thread has
// to say to it never waits behind thousands of keys.
class PacedOutput : public KeyStream::Output {
 public:
  PacedOutput(KeyStream::Output& output, std::function<void()> catchUp)
      : output_(output), catchUp_(std::move(catchUp)) {}
  void press(XKeycode keycode) override { output_.press(keycode); }
  void release(XKeycode keycode) override {
    output_.release(keycode);
    if (++released_ % kPortion == 0) catchUp_();
  }
  void flush() override { output_.flush(); }
  KeyReader::Locks locks() override { return output_.locks(); }

 private:
  static constexpr int kPortion = 64;

  KeyStream::Output& output_;
  std::function<void()> catchUp_;
  int released_ = 0;
};

}  // namespace

Result<std::unique_ptr<KeyboardSession>> KeyboardSession::open(const KeyboardOptions& options,
                                                               Notices notices) {
  auto connection = XConnection::open(options.display);
  if (!connection) return connection.error();
  std::unique_ptr<KeyboardSession> session(new KeyboardSession(std::move(connection).value(), options));
  session->start(std::move(notices));
  return session;
}

KeyboardSession::KeyboardSession(std::unique_ptr<XConnection> connection, KeyboardOptions options)
    : connection_(std::move(connection)),
      options_(std::move(options)),
      link_(*connection_),
      loop_(*connection_, "keyboard") {
  if (!link_.obstacles().empty()) return;
  window_ = connection_->createMessageWindow(XCB_EVENT_MASK_NO_EVENT);
  guardMessage_ = connection_->atom("_QUORLO_KEYBOARD_GUARD");
  link_.selectEvents();
  auto map = link_.map();
  if (!map) return;
  stream_.emplace(link_, static_cast<KeyStream::Judge&>(*this), KeyReader(std::move(*map), composeLocale()));
  stream_->setLocks(link_.locks());
  stream_->setStickyKeys(link_.hasStickyKeys());
  guard_.emplace(*connection_, loop_, options_.guardProgram, window_, guardMessage_,
                 [this](xcb_window_t window) { link_.setGuard(window, guardMessage_); });
}

KeyboardSession::~KeyboardSession() {
  if (tapping_) endTap();
  loop_.stop();
}

void KeyboardSession::start(Notices notices) {
  notices_ = std::move(notices);
  loop_.start([this](const xcb_generic_event_t& event) { handleEvent(event); }, notices_.lost);
}

bool KeyboardSession::beginTap(std::shared_ptr<TapConversation> conversation) {
  if (!stream_) return false;
  enum class Attempt { open, done, givenUp };
  const auto attempt = std::make_shared<std::atomic<Attempt>>(Attempt::open);
  loop_.postAndWait(
      [this, conversation = std::move(conversation), attempt] {
        if (*attempt == Attempt::givenUp) return;
        startWatching(conversation);
        auto expected = Attempt::open;
        if (!attempt->compare_exchange_strong(expected, Attempt::done)) stopWatching();
      },
      kPatience);
  auto expected = Attempt::open;
  tapping_ = !attempt->compare_exchange_strong(expected, Attempt::givenUp);
  if (!tapping_) {
    logWarning("WARNING: #x11kS2; The X server does not let the keyboards be watched in time.");
  } else if (waitsForKeyboard()) {
    logWarning(
        "WARNING: #x11kS1; There is no keyboard to watch yet: none is plugged in, or another program has grabbed "
        "it.");
  } else {
    logInfo(kWatching);
  }
  return tapping_;
}

void KeyboardSession::endTap() {
  tapping_ = false;
  loop_.postAndWait([this] { stopWatching(); }, kPatience);
}

void KeyboardSession::startWatching(std::shared_ptr<TapConversation> conversation) {
  conversation_ = std::move(conversation);
  grabbing_ = true;
  guard_->begin();
  takeKeyboards();
}

void KeyboardSession::stopWatching() {
  if (!grabbing_) return;
  followSession();
  link_.ungrabKeyboards();
  connection_->sync();
  // What was typed until then still goes to the applications.
  while (XReply<xcb_generic_event_t> event{xcb_poll_for_event(connection_->get())}) handleEvent(*event);
  stream_->endHold();
  stream_->drain();
  grabbing_ = false;
  stream_->end();
  conversation_.reset();
  guard_->end();
  setWatching(Watching::nothing);
}

void KeyboardSession::stopOverworked() {
  if (!grabbing_) return;
  stopWatching();
  setWatching(Watching::overworked);
}

void KeyboardSession::setWatching(Watching watching) {
  if (watching_.exchange(watching) != watching) notices_.watchingChanged();
}

void KeyboardSession::takeKeyboards() {
  link_.grabKeyboards();
  readMap();
  followControls();
  stream_->letGoOthers(link_.pressedKeys());
  stream_->begin(link_.heldKeys());
  setWatching(link_.hasGrabbed() ? Watching::keyboards : Watching::waits);
  lookForKeyboards(kFirstPause);
}

TapVerdict KeyboardSession::keyPressed(const KeyDownEvent& event) {
  if (!conversation_ || isPassedUnseen(event)) return TapVerdict::pass;
  return conversation_->ask(event);
}

void KeyboardSession::keyRepeated(const KeyDownEvent& event) {
  if (!conversation_ || isPassedUnseen(event)) return;
  auto notice = event;
  notice.origin = KeyDownEvent::Origin::posted;
  conversation_->tell(notice);
}

bool KeyboardSession::isPassedUnseen(const KeyDownEvent& event) const {
  return screenIsLocked_ || hotKeys_.contains(normalized({event.keyCode, event.flags}));
}

void KeyboardSession::handleEvent(const xcb_generic_event_t& event) {
  if ((event.response_type & 0x7FU) == XCB_CLIENT_MESSAGE) {
    const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
    // Whatever the guard asks about came before: it was reported, or is none of ours.
    if (message.type == guardMessage_ && grabbing_) {
      link_.taken(pressOf(message));
      link_.flush();
    }
    return;
  }
  const auto change = link_.read(event);
  if (const auto* typed = std::get_if<KeyTyped>(&change)) {
    if (grabbing_) handleKey(*typed);
  } else if (!std::holds_alternative<std::monostate>(change)) {
    limited([&] { handleChange(change); });
  }
}

void KeyboardSession::handleChange(const KeyboardChange& change) {
  if (const auto* map = std::get_if<MapChanged>(&change)) {
    if (link_.noteMapChange(map->device)) followLater(&Pending::map);
  } else if (std::holds_alternative<LocksChanged>(change)) {
    followLater(&Pending::locks);
  } else if (std::holds_alternative<ControlsChanged>(change)) {
    followLater(&Pending::controls);
  } else if (grabbing_) {
    takeNewKeyboards();
  }
}

void KeyboardSession::handleKey(const KeyTyped& typed) {
  followSession();
  auto key = typed.key;
  if (key.kind == PhysicalKey::Kind::press) {
    breaker_.keyTyped();
    key.press = pressNumbering_.next(key.device, typed.time);
    if (link_.useMapOf(key.device)) readMap();
  }
  stream_->handle(key);
}

// Changes arrive in flocks. They are followed once: when all that has arrived is read, or a key needs it.
void KeyboardSession::followLater(bool Pending::*part) {
  if (!grabbing_) {
    if (part == &Pending::map) ++mapGeneration_;
    return;
  }
  if (!pending_.any()) {
    loop_.post([this] { limited([this] { followSession(); }); });
  }
  pending_.*part = true;
}

void KeyboardSession::followSession() {
  const auto pending = std::exchange(pending_, {});
  if (pending.map && link_.followMap()) readMap();
  if (pending.controls) followControls();
  if (!pending.locks) return;
  const auto locks = link_.locks();
  stream_->setLocks(locks);
  link_.followLocks(locks);
}

void KeyboardSession::followControls() {
  link_.followControls();
  stream_->setStickyKeys(link_.hasStickyKeys());
}

void KeyboardSession::takeNewKeyboards() {
  const auto grab = link_.grabKeyboards();
  if (watching_ == Watching::waits && link_.hasGrabbed()) logInfo(kWatching);
  setWatching(link_.hasGrabbed() ? Watching::keyboards : Watching::waits);
  lookForKeyboards(kFirstPause);
  const auto held = link_.heldKeys();
  stream_->keepOnly({held.begin(), held.end()});
  if (grab != KeyboardLink::Grab::some) return;
  // A new keyboard may have been typed on before it was grabbed.
  stream_->letGoOthers(link_.pressedKeys());
  conversation_->tellOfUnseenKeys();
}

// The server tells when a keyboard is plugged in, but not when another program, or the Quorlo before this
// one, lets go of it.
void KeyboardSession::lookForKeyboards(std::chrono::milliseconds pause) {
  if (isLooking_ || watching_ != Watching::waits || !link_.hasKeyboard()) return;
  isLooking_ = true;
  loop_.runAt(std::chrono::steady_clock::now() + pause, [this, pause] {
    isLooking_ = false;
    if (!grabbing_ || watching_ != Watching::waits) return;
    isLooking_ = true;  // the pauses grow
    takeNewKeyboards();
    isLooking_ = false;
    lookForKeyboards(std::min(2 * pause, kLongestPause));
  });
}

void KeyboardSession::readMap() {
  if (!stream_) return;
  auto map = link_.map();
  if (!map) return;
  stream_->setMap(std::move(*map));
  stream_->setLocks(link_.locks());
  ++mapGeneration_;
}

void KeyboardSession::setHotKeys(std::set<Shortcut> hotKeys) {
  loop_.post([this, hotKeys = std::move(hotKeys)] { hotKeys_ = hotKeys; });
}

HoldId KeyboardSession::beginHold() {
  if (!tapping_) return {};
  noteProgress();
  const auto hold = stream_->beginHold();
  loop_.post([this] {
    if (!watchingHold_) watchHold();
  });
  return hold;
}

bool KeyboardSession::keepTrigger(HoldId hold) {
  return !tapping_ || stream_->keepTrigger(hold);
}

void KeyboardSession::endHold() {
  if (!tapping_) return;
  stream_->endHold();
  loop_.post([this] { stream_->drain(); });
}

void KeyboardSession::noteProgress(Seconds pause) {
  using Clock = std::chrono::steady_clock;
  const auto until = Clock::now() + std::chrono::duration_cast<Clock::duration>(pause);
  lastProgress_ = std::max(lastProgress_.load(), until);
}

void KeyboardSession::watchHold() {
  watchingHold_ = stream_->isHolding();
  if (!watchingHold_) return;
  const auto due = lastProgress_.load() + kHoldPatience;
  if (due <= std::chrono::steady_clock::now()) {
    logWarning("Typed keys were held for 2 s without progress of the expansion; they are delivered now.");
    watchingHold_ = false;
    stream_->endHold();
    stream_->drain();
    return;
  }
  loop_.runAt(due, [this] { watchHold(); });
}

void KeyboardSession::post(const std::function<void(KeyStream::Output&)>& keys) {
  if (!stream_) return;
  noteProgress();
  if (tapping_) {
    stream_->withoutModifiers([&](KeyStream::Output& output) {
      PacedOutput paced(output, [this] {
        connection_->sync();
        wake();
        noteProgress();
      });
      const auto stuck = link_.freeStuckModifiers();
      keys(paced);
      link_.lockModifiers(stuck);
    });
    loop_.post([this] { stream_->drain(); });
  } else {
    const auto modifiers = link_.pressedModifiers();
    for (const auto keycode : modifiers) link_.release(keycode);
    // Pressed again after an earlier post, and let go on the physical keyboard only.
    link_.releaseXtestKeys();
    keys(link_);
    for (const auto keycode : modifiers) link_.press(keycode);
    link_.flush();
    wake();
  }
}

bool KeyboardSession::hasKeyboard() {
  const bool result = link_.hasKeyboard();
  wake();
  return result;
}

std::optional<KeyMap> KeyboardSession::loadMap() {
  auto map = link_.map();
  wake();
  return map;
}

std::uint32_t KeyboardSession::currentLayout() {
  const auto layout = link_.locks().lockedGroup;
  wake();
  return layout;
}

}  // namespace quorlo
