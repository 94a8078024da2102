#include "x11/keyboard/keyboard_service.h"

#include "base/log.h"

#include <utility>

namespace quorlo {

class KeyboardService::Port : public EventTap::Port {
 public:
  Port(KeyboardService& service, std::shared_ptr<TapConversation> conversation)
      : service_(service), conversation_(std::move(conversation)) {}
  ~Port() override { service_.closeTap(); }
  void enable() override { conversation_->enable(); }
  bool isEnabled() const override { return conversation_->isEnabled(); }
  void passUnasked(std::function<bool(const KeyDownEvent&)> needsNoVerdict) override {
    conversation_->passUnasked(std::move(needsNoVerdict));
  }
  std::vector<KeyDownEvent> takePassedKeys() override { return conversation_->takePassedKeys(); }

 private:
  KeyboardService& service_;
  std::shared_ptr<TapConversation> conversation_;
};

Result<std::unique_ptr<KeyboardService>> KeyboardService::start(KeyboardOptions options, MainQueue& queue) {
  std::unique_ptr<KeyboardService> service(new KeyboardService(std::move(options), queue));
  if (auto status = service->openSession(); !status) return status.error();
  return service;
}

// For notices on a session's thread: only the main thread may look whether this object still lives.
std::function<void()> KeyboardService::onMainThread(void (KeyboardService::*handle)()) {
  return [this, handle, queue = &queue_, alive = std::weak_ptr<char>(alive_)] {
    queue->run([this, handle, alive] {
      if (!alive.expired()) (this->*handle)();
    });
  };
}

Status KeyboardService::openSession() {
  auto session = KeyboardSession::open(options_, {onMainThread(&KeyboardService::reopenSession),
                                                  onMainThread(&KeyboardService::followWatching)});
  if (!session) return session.error();
  session_ = std::move(session).value();
  session_->setHotKeys(hotKeys_);
  session_->setScreenIsLocked(screenIsLocked_);
  map_.reset();
  return {};
}

void KeyboardService::reopenSession() {
  session_.reset();
  if (!openSession()) {
    logError("The X server connection lost: keys can no longer be watched or pressed.");
    if (const auto report = std::exchange(options_.connectionLost, nullptr)) report();
    return;
  }
  logWarning("The connection for watching keys was ended; watching goes on with another one.");
  if (conversation_) beginTapLater();
}

void KeyboardService::followWatching() {
  if (session_ && session_->isOverworked()) {
    session_->endTap();
    if (beginTapLater() == std::chrono::seconds::zero()) {
      logWarning(
          "WARNING: #x11kS3; The keyboards were let go: a program changes them without end, or their changes "
          "cause each other. They are watched again later.");
    }
  }
  obstacleObservers_.notify();
}

void KeyboardService::beginTap() {
  if (!session_->beginTap(conversation_)) beginTapLater();
  obstacleObservers_.notify();
}

std::chrono::seconds KeyboardService::beginTapLater() {
  const auto pause = retryPauses_.next(queue_.now());
  auto begin = [this, alive = std::weak_ptr<char>(alive_), waiting = std::weak_ptr(conversation_)] {
    const bool isCurrent = !alive.expired() && !waiting.expired() && conversation_ == waiting.lock();
    if (!isCurrent || !session_ || session_->isTapping()) return;
    conversation_->tellOfUnseenKeys();
    beginTap();
  };
  queue_.runAfter(pause, std::move(begin));
  return pause;
}

std::vector<AccessibilityObstacle> KeyboardService::obstacles() const {
  if (!session_) return {AccessibilityObstacle::displayIsLost};
  auto found = session_->obstacles();
  if (!found.empty()) return found;
  if (!session_->hasKeyboard()) return {AccessibilityObstacle::noKeyboard};
  if (session_->waitsForKeyboard()) return {AccessibilityObstacle::keyboardsAreTaken};
  if (conversation_ && (!session_->isTapping() || session_->isOverworked()))
    return {AccessibilityObstacle::watchingIsInterrupted};
  return {};
}

std::unique_ptr<EventTap::Port> KeyboardService::createTap(EventTap::Callback callback, void* userInfo) {
  if (!isUsable() || conversation_) return nullptr;
  conversation_ = std::make_shared<TapConversation>(queue_, callback, userInfo);
  beginTap();
  return std::make_unique<Port>(*this, conversation_);
}

void KeyboardService::closeTap() {
  conversation_->close();
  conversation_.reset();
  if (session_) session_->endTap();
}

void KeyboardService::report(const KeyDownEvent& event) {
  if (const auto conversation = conversation_) conversation->report(event);
}

void KeyboardService::setHotKeys(std::set<Shortcut> hotKeys) {
  hotKeys_ = std::move(hotKeys);
  if (session_) session_->setHotKeys(hotKeys_);
}

void KeyboardService::setScreenIsLocked(bool isLocked) {
  screenIsLocked_ = isLocked;
  if (session_) session_->setScreenIsLocked(isLocked);
  if (isLocked && conversation_) conversation_->tellOfUnseenKeys();
}

HoldId KeyboardService::beginHold() {
  return session_ ? session_->beginHold() : HoldId();
}

bool KeyboardService::keepTrigger(HoldId hold) {
  return !session_ || session_->keepTrigger(hold);
}

void KeyboardService::endHold() {
  if (session_) session_->endHold();
}

void KeyboardService::noteProgress(Seconds pause) {
  if (session_) session_->noteProgress(pause);
}

void KeyboardService::post(const std::function<void(KeyStream::Output&)>& keys) {
  if (session_) session_->post(keys);
}

const KeyMap* KeyboardService::map() const {
  if (!isUsable()) return nullptr;
  if (const auto generation = session_->mapGeneration(); !map_ || mapGeneration_ != generation) {
    mapGeneration_ = generation;
    map_ = session_->loadMap();
  }
  return map_ ? &*map_ : nullptr;
}

std::uint32_t KeyboardService::layout() const {
  return session_ ? session_->currentLayout() : 0;
}

}  // namespace quorlo
