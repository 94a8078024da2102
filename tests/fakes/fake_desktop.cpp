#include "fakes/fake_desktop.h"

#include "text/graphemes.h"
#include "text/utf.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace quorlo {
namespace {

constexpr Seconds kHoldPatience{2};

}  // namespace

void FakeApplication::receive(KeyCode code, ModifierFlags flags, std::u16string_view characters,
                              const FakePasteboard& pasteboard) {
  if (flags & modifier::kCommand) {
    if (code != key::kV) return;
    pasted.push_back(pasteboard.contents());
    const auto piece = toUtf16(pasteboard.text());
    text.insert(caret, piece);
    caret += piece.size();
    return;
  }
  switch (code) {
    case key::kBackspace: {
      const auto start = lastGraphemeStart(std::u16string_view(text).substr(0, caret));
      text.erase(start, caret - start);
      caret = start;
      return;
    }
    case key::kForwardDelete:
      if (caret < text.size()) text.erase(caret, 1);
      return;
    case key::kLeftArrow:
      if (caret > 0) --caret;
      return;
    case key::kRightArrow:
      if (caret < text.size()) ++caret;
      return;
    default:
      break;
  }
  if (!characters.empty() && characters[0] >= kFirstFunctionKeyCharacter && characters[0] < 0xF8FF) return;
  std::u16string typed(characters);
  if (code == key::kReturn) typed = u"\n";
  text.insert(caret, typed);
  caret += typed.size();
}

FakeApplication& FakeDesktop::launch(std::optional<std::string> bundleIdentifier) {
  auto application = std::make_unique<FakeApplication>();
  application->record = std::make_shared<RunningApplication>();
  application->record->processIdentifier = 1000 + static_cast<std::int64_t>(applications_.size());
  application->record->localizedName = bundleIdentifier.value_or("unnamed");
  application->record->bundleIdentifier = std::move(bundleIdentifier);
  running_.push_back(application->record);
  applications_.push_back(std::move(application));
  activate(applications_.back().get());
  return *applications_.back();
}

void FakeDesktop::activate(FakeApplication* application) {
  active_ = application;
  ++stamp_;
  for (const auto& each : applications_) each->record->isActive = each.get() == application;
  if (application != nullptr && application->record->bundleIdentifier == own_) {
    breakHold();
  }
}

void FakeDesktop::close(FakeApplication& application) {
  application.isOpen = false;
  if (active_ == &application) activate(nullptr);
}

bool FakeDesktop::isStill(FrontWindow::Id window) const {
  if (window == 0 || active_ != nullptr) return window == 0 || window == current();
  return reinterpret_cast<const FakeApplication*>(window)->isOpen;
}

void FakeDesktop::type(std::u16string_view characters) {
  for (const auto& character : characters) {
    switch (character) {
      case u'\b':
        press(key::kBackspace, 0, u"\x7f");
        break;
      case u'\n':
      case u'\r':
        press(key::kReturn, 0, u"\r");
        break;
      case u'\t':
        press(key::kTab, 0, u"\t");
        break;
      case u' ':
        press(key::kSpace, 0, u" ");
        break;
      default:
        press(0, 0, std::u16string(1, character));
    }
  }
}

void FakeDesktop::press(KeyCode code, ModifierFlags flags, std::u16string characters) {
  KeyDownEvent event{code, flags, std::move(characters), KeyDownEvent::Origin::keyboard};
  if (holds_ > 0) {
    held_.push_back(std::move(event));
  } else {
    deliver(event);
  }
}

void FakeDesktop::deliver(const KeyDownEvent& event) {
  judging_ = event;
  const bool swallowed = isTapEnabled() && port_->judge(event) == TapVerdict::swallow;
  judging_.reset();
  if (swallowed) return;
  trigger_.reset();
  receive(event);
}

TapVerdict FakeDesktop::TapPort::judge(const KeyDownEvent& event) {
  if (needsNoVerdict && needsNoVerdict(event)) {
    passed.push_back(event);
    passed.back().origin = KeyDownEvent::Origin::passed;
    return TapVerdict::pass;
  }
  ++desktop.keysAskedAbout_;
  return callback(TapEventType::keyDown, &event, userInfo);
}

void FakeDesktop::receive(const KeyDownEvent& event) {
  const bool pastes = event.keyCode == key::kV && (event.flags & modifier::kCommand) != 0;
  if (pastes && readingDelay_ > Seconds(0)) return receiveLater(event);
  if (active_ != nullptr) active_->receive(event.keyCode, event.flags, event.characters, pasteboard);
}

void FakeDesktop::receiveLater(const KeyDownEvent& event) {
  ++unreadPieces_;
  queue.runAfter(readingDelay_, [this, event, target = active_, piece = pasteboard] {
    if (target != nullptr) target->receive(event.keyCode, event.flags, event.characters, piece);
    if (--unreadPieces_ == 0) runWhenRead();
  });
}

void FakeDesktop::whenRead(Seconds patience, std::function<void()> next) {
  if (unreadPieces_ == 0) return next();
  whenRead_.push_back(std::move(next));
  queue.runAfter(patience, [this, wait = readWaits_] {
    if (wait == readWaits_) runWhenRead();
  });
}

void FakeDesktop::runWhenRead() {
  ++readWaits_;
  for (const auto& next : std::exchange(whenRead_, {})) next();
}

void FakeDesktop::clickMouse(MouseButton button) {
  if (mouseHandler_) mouseHandler_(button);
}

void FakeDesktop::timeOutTap() {
  port_->enabled = false;
  port_->callback(TapEventType::kCGEventTapDisabledByTimeout, nullptr, port_->userInfo);
}

void FakeDesktop::typeUnseen(std::u16string_view characters) {
  TapPort* const port = std::exchange(port_, nullptr);
  type(characters);
  port_ = port;
  port->callback(TapEventType::keysPassedUnseen, nullptr, port->userInfo);
}

std::unique_ptr<EventTap::Port> FakeDesktop::create(Callback callback, void* userInfo) {
  if (!trusted_ || refusesTaps_) return nullptr;
  return std::make_unique<TapPort>(*this, callback, userInfo);
}

void FakeDesktop::paste() {
  posts.push_back(kPaste);
  press({key::kV, modifier::kLeftCommandEvent, u"v", KeyDownEvent::Origin::posted}, PostLocation::session);
}

void FakeDesktop::postKey(KeyCode code, ModifierFlags flags, PostLocation location, int count) {
  posts.push_back({code, flags, location, count});
  const auto characters = (flags & modifier::kCommand) != 0 ? u"v"
                          : code == key::kReturn            ? u"\r"
                          : code == key::kTab               ? u"\t"
                          : code == key::kSpace             ? u" "
                                                            : u"";
  const KeyDownEvent event{code, flags, characters, KeyDownEvent::Origin::posted};
  for (int i = 0; i < count; ++i) press(event, location);
}

void FakeDesktop::press(const KeyDownEvent& posted, PostLocation location) {
  if (location == PostLocation::session && isTapEnabled()) {
    port_->callback(TapEventType::keyDown, &posted, port_->userInfo);
  }
  noteProgress();
  receive(posted);
}

struct FakeDesktop::HeldKeys : Hold {
  explicit HeldKeys(FakeDesktop& d) : desktop(d), generation(d.holdGeneration_) {}
  ~HeldKeys() override {
    if (isBroken()) return;
    --desktop.holds_;
    desktop.deliverHeldKeys();
  }
  bool isBroken() const { return generation != desktop.holdGeneration_; }
  bool keepTrigger() override {
    if (!isBroken()) desktop.trigger_.reset();
    return !isBroken();
  }
  void expectPause(Seconds pause) override { desktop.noteProgress(pause); }

  FakeDesktop& desktop;
  const int generation;
};

bool FakeDesktop::canType(std::u16string_view text) const {
  return text.find_first_of(keysRemoved_) == std::u16string_view::npos;
}

void FakeDesktop::typeText(std::u16string_view text) {
  if (active_ == nullptr || !canType(text)) return;
  for (const auto character : text) active_->receive(0, 0, {&character, 1}, pasteboard);
}

std::unique_ptr<TypedKeysHold::Hold> FakeDesktop::begin() {
  if (holds_++ == 0) {
    trigger_ = judging_;
    watchHold();
  }
  noteProgress();
  return std::make_unique<HeldKeys>(*this);
}

void FakeDesktop::breakHold() {
  ++holdGeneration_;
  holds_ = 0;
  deliverHeldKeys();
}

void FakeDesktop::noteProgress(Seconds pause) {
  lastProgress_ =
      std::max(lastProgress_, queue.now() + std::chrono::duration_cast<MainQueue::Instant::duration>(pause));
}

void FakeDesktop::watchHold() {
  queue.runAfter(kHoldPatience, [this, generation = holdGeneration_] {
    if (holds_ == 0 || generation != holdGeneration_) return;
    if (queue.now() - lastProgress_ >= kHoldPatience) return breakHold();
    watchHold();
  });
}

void FakeDesktop::deliverHeldKeys() {
  if (holds_ == 0 && trigger_) receive(*std::exchange(trigger_, std::nullopt));
  while (holds_ == 0 && !held_.empty()) {
    const auto event = std::move(held_.front());
    held_.pop_front();
    deliver(event);
  }
}

Subscription FakeDesktop::observeMouseDown(std::function<void(MouseButton)> handler) {
  mouseHandler_ = std::move(handler);
  return Subscription([this] { mouseHandler_ = nullptr; });
}

std::optional<KeyCode> FakeDesktop::keyCodeForNamedKey(NamedKey name) const {
  return name == NamedKey::leftArrow ? key::kLeftArrow : key::kBackspace;
}

}  // namespace quorlo
