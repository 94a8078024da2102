#include "fakes/fake_desktop.h"

#include "text/graphemes.h"
#include "text/utf.h"

namespace quorlo {

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
  for (const auto& each : applications_) each->record->isActive = each.get() == application;
  if (application != nullptr && application->record->bundleIdentifier == own_) {
    // A window of this program takes over.
    ++holdGeneration_;
    holds_ = 0;
    deliverHeldKeys();
  }
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
  const bool swallowed = isTapEnabled() && port_->callback(TapEventType::keyDown, &event, port_->userInfo) ==
                                               TapVerdict::swallow;
  if (!swallowed && active_ != nullptr) {
    active_->receive(event.keyCode, event.flags, event.characters, pasteboard);
  }
}

void FakeDesktop::clickMouse() {
  if (mouseHandler_) mouseHandler_();
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
  if (active_ != nullptr) active_->receive(posted.keyCode, posted.flags, posted.characters, pasteboard);
}

Subscription FakeDesktop::begin() {
  ++holds_;
  return Subscription([this, generation = holdGeneration_] {
    if (generation != holdGeneration_) return;
    --holds_;
    deliverHeldKeys();
  });
}

void FakeDesktop::deliverHeldKeys() {
  while (holds_ == 0 && !held_.empty()) {
    const auto event = std::move(held_.front());
    held_.pop_front();
    deliver(event);
  }
}

Subscription FakeDesktop::observeLeftMouseDown(std::function<void()> handler) {
  mouseHandler_ = std::move(handler);
  return Subscription([this] { mouseHandler_ = nullptr; });
}

std::optional<KeyCode> FakeDesktop::keyCodeForNamedKey(NamedKey name) const {
  return name == NamedKey::leftArrow ? key::kLeftArrow : key::kBackspace;
}

}  // namespace quorlo
