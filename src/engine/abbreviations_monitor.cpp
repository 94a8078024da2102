#include "engine/abbreviations_monitor.h"

#include "app/settings/settings_controller.h"
#include "base/log.h"
#include "engine/accessibility_manager.h"
#include "engine/expansion_rules.h"
#include "engine/expansion_undo.h"
#include "engine/typed_key.h"
#include "platform/main_queue.h"
#include "platform/mouse_monitor.h"
#include "platform/workspace.h"
#include "store/lookup/expansion_lookup.h"
#include "store/persistence_controller.h"
#include "store/records/folder_types.h"
#include "store/records/ql_snippet.h"
#include "store/use_recorder.h"

#include <cstdint>
#include <optional>
#include <utility>

namespace quorlo {
namespace {

constexpr Seconds kFirstUpdateDelay{0.1};
constexpr int kLongestTailWithinWord = 29;
constexpr auto kExcluded = static_cast<std::int64_t>(AppType::Excluded);

bool addsText(const KeyDownEvent& event) {
  return typedKey(event) == TypedKey::text && !event.characters.empty();
}

bool isSameApplication(const RunningApplication* a, const RunningApplication* b) {
  if (a == nullptr || b == nullptr) return a == b;
  // One process may be several applications.
  return a->processIdentifier == b->processIdentifier && a->bundleIdentifier == b->bundleIdentifier;
}

}  // namespace

AbbreviationsMonitor::AbbreviationsMonitor(const Dependencies& dependencies)
    : use_(dependencies),
      managedObjectContext(use_.persistence.managedObjectContext()),
      lastActiveApplication(use_.accessibility.frontmostApplication()) {
  use_.persistence.observeObjectsDidChange(managedObjectContext);
  settingsObservation_ = use_.settings.observe([this](Setting setting) {
    if (setting == Setting::abbreviationsEnabled) updateEventTap();
    setPassedKeysStamp(0);
  });
  insertions_ = use_.paste.observeInsertions([this] { use_.undo.withdraw(); });
  use_.queue.runAfter(kFirstUpdateDelay, life_.guard([this] { updateEventTap(); }));
}

void AbbreviationsMonitor::updateEventTap() {
  abbreviationMouseEventMonitor.reset();
  if (!use_.settings.abbreviationsEnabled()) {
    if (_eventTap) {
      logInfo("Removing eventTap");
      setPassedKeysStamp(0);
      _eventTap.reset();
    }
    return;
  }
  abbreviationMouseEventMonitor = use_.mouse.observeMouseDown([this](MouseButton button) {
    if (button != MouseButton::left) return use_.undo.withdraw();
    logDebug("leftMouseDown");
    takePassedKeys();
    forgetTyping();
  });
  logInfo("Adding eventTap");
  eventTap();
}

EventTap::Port* AbbreviationsMonitor::eventTap() {
  if (!_eventTap) _eventTap = use_.tap.create(&AbbreviationsMonitor::eventTapCallback, this);
  if (_eventTap) return _eventTap.get();

  if (use_.accessibility.checkAccessibility(AccessibilityManager::Prompt::showAlert)) {
    logError("ERROR: #rfkKFKF");
  } else {
    logError("ERROR #sgikiuu - Unable to invoke CGEvent.tapCreate. Please enable Accessibility.");
    // Observed above: monitoring stops.
    use_.settings.setAbbreviationsEnabled(false);
  }
  return nullptr;
}

TapVerdict AbbreviationsMonitor::eventTapCallback(TapEventType type, const KeyDownEvent* event,
                                                  void* userInfo) {
  if (userInfo == nullptr) {
    logError("ERROR: #srgojKk");
    return TapVerdict::pass;
  }
  auto& monitor = *static_cast<AbbreviationsMonitor*>(userInfo);
  if (type == TapEventType::kCGEventTapDisabledByTimeout) {
    logError("ERROR: #4ughugir - kCGEventTapDisabledByTimeout");
    monitor.takePassedKeys();
    monitor.forgetTyping();
    if (monitor._eventTap) monitor._eventTap->enable();
    return TapVerdict::pass;
  }
  if (type == TapEventType::keysPassedUnseen) {
    monitor.takePassedKeys();
    monitor.forgetTyping();
  }
  if (event == nullptr) return TapVerdict::pass;
  return monitor.handleKeyDown(*event) ? TapVerdict::swallow : TapVerdict::pass;
}

std::u16string_view AbbreviationsMonitor::typedText() {
  takePassedKeys();
  return potentialAbbreviation.text();
}

bool AbbreviationsMonitor::handleKeyDown(const KeyDownEvent& event) {
  // No key passes while a verdict is awaited. Otherwise one may pass that belongs to the place before.
  const bool isAwaited = event.origin == KeyDownEvent::Origin::keyboard;
  if (!isAwaited) setPassedKeysStamp(0);
  takePassedKeys();
  place_ = currentPlace();
  const bool swallow = handle(event);
  if (isAwaited) choosePassedKeys();
  return swallow;
}

AbbreviationsMonitor::Place AbbreviationsMonitor::currentPlace() const {
  const auto stamp = use_.context.stamp();
  return {stamp, use_.accessibility.frontmostApplication(), use_.context.obstacle()};
}

void AbbreviationsMonitor::takePassedKeys() {
  if (!_eventTap) return;
  for (const auto& key : _eventTap->takePassedKeys()) handle(key);
}

void AbbreviationsMonitor::choosePassedKeys() {
  const bool everyKeyCounts = place_.obstacle || use_.undo.isOffered();
  setPassedKeysStamp(everyKeyCounts ? 0 : place_.stamp);
}

void AbbreviationsMonitor::setPassedKeysStamp(std::uint64_t stamp) {
  if (!_eventTap || stamp == std::exchange(passedKeysStamp_, stamp)) return;
  if (stamp == 0) return _eventTap->passUnasked(nullptr);
  const bool isLastSymbol = use_.settings.abbreviationsTriggerType() == AbbreviationTriggerType::lastSymbol;
  _eventTap->passUnasked(
      [stamp, isLastSymbol, &context = use_.context,
       delimiters = use_.settings.activeAbbreviationKeyStrings()](const KeyDownEvent& event) {
        const bool mayComplete = isLastSymbol ? addsText(event) : isDelimiter(event, delimiters);
        return !mayComplete && context.stamp() == stamp;
      });
}

bool AbbreviationsMonitor::handle(const KeyDownEvent& event) {
  if (place_.obstacle) {
    forgetTyping();
    return false;
  }
  const auto& frontmost = place_.application;
  if (use_.undo.takes(event)) {
    // What is given back must not expand again at the next delimiter.
    potentialAbbreviation.clear();
    return true;
  }
  if (frontmost && frontmost->bundleIdentifier && isApplicationExcluded(*frontmost->bundleIdentifier)) {
    return false;
  }
  if (!use_.settings.abbreviationsEnabled()) return false;
  if (!isSameApplication(frontmost.get(), lastActiveApplication.get())) potentialAbbreviation.clear();

  const bool mayExpand = event.origin == KeyDownEvent::Origin::keyboard;
  const auto trigger = use_.settings.abbreviationsTriggerType();
  bool swallow = false;
  if (mayExpand && trigger == AbbreviationTriggerType::delimiterKey &&
      isDelimiter(event, use_.settings.activeAbbreviationKeyStrings())) {
    if (const auto match = findTypedAbbreviation(); match.snippet) {
      if (!isAllowed(*match.snippet, frontmost.get())) return false;
      expand(match, event.characters);
      swallow = true;
    }
  }

  editBuffer(event);
  lastActiveApplication = frontmost;

  if (mayExpand && addsText(event) && trigger == AbbreviationTriggerType::lastSymbol) {
    if (const auto match = findTypedAbbreviation();
        match.snippet && isAllowed(*match.snippet, frontmost.get())) {
      expand(match, {});
      return true;
    }
  }
  return swallow;
}

// What was typed need not stand in front of the caret any more.
void AbbreviationsMonitor::forgetTyping() {
  potentialAbbreviation.clear();
  use_.undo.withdraw();
}

void AbbreviationsMonitor::editBuffer(const KeyDownEvent& event) {
  switch (typedKey(event)) {
    case TypedKey::end:
      return potentialAbbreviation.clear();
    case TypedKey::backspace:
      return potentialAbbreviation.removeLast();
    case TypedKey::text:
      return potentialAbbreviation.append(event.characters);
  }
}

AbbreviationsMonitor::Match AbbreviationsMonitor::findTypedAbbreviation() const {
  const auto typed = potentialAbbreviation.text();
  return findSnippet(typed, typed, potentialAbbreviation.graphemeCount(),
                     use_.settings.expandAbbreviationWithinWord(), 1);
}

AbbreviationsMonitor::Match AbbreviationsMonitor::findSnippet(std::u16string_view candidate,
                                                              std::u16string_view fullText,
                                                              std::size_t fullTextCount, bool withinWord,
                                                              int depth) const {
  while (!candidate.empty()) {
    const auto found = use_.lookup.liveSnippet(candidate);
    if (!found) {
      logError("ERROR: #23854; Couldn't fetch Snippet. " + found.error().message);
    } else if (found.value()) {
      return {found.value(), candidate};
    }
    if (!withinWord || depth > kLongestTailWithinWord) break;
    // A count of characters taken as an offset in UTF-16 units: in text beyond the Basic Multilingual
    // Plane the tails begin earlier than their depth says.
    const auto tail = static_cast<std::size_t>(depth);
    if (fullTextCount <= tail) break;
    candidate = fullText.substr(fullTextCount - tail);
    ++depth;
  }
  return {};
}

bool AbbreviationsMonitor::isApplicationExcluded(const std::string& bundleIdentifier) const {
  if (bundleIdentifier == use_.workspace.ownBundleIdentifier()) return true;
  const auto excluded = use_.lookup.hasApp(bundleIdentifier, kExcluded);
  return excluded.ok() && excluded.value();
}

bool AbbreviationsMonitor::isAllowed(const QLSnippet& snippet, const RunningApplication* application) const {
  return folderAllowsExpansion(snippet, application) && use_.paste.mayExpand();
}

void AbbreviationsMonitor::expand(const Match& match, std::u16string_view delimiter) {
  auto content = match.snippet->text();
  if (!delimiter.empty() && !use_.settings.removeTriggerKey()) content.append(delimiter);
  const auto typed = static_cast<std::int64_t>(graphemeCount(match.matchedText) + graphemeCount(delimiter));
  auto use = std::make_shared<std::optional<RecordedUse>>();
  auto count = [&persistence = use_.persistence, snippet = match.snippet, typed, use](std::size_t inserted) {
    *use = recordUse(persistence, *snippet, static_cast<std::int64_t>(inserted), typed);
  };
  auto offerUndo = [this, snippet = match.snippet, use, window = use_.frontWindow.current(),
                    given = std::u16string(match.matchedText).append(delimiterToGiveBack(delimiter))](
                       const std::u16string& text) {
    if (!use_.settings.undoExpansionWithBackspace()) return;
    setPassedKeysStamp(0);
    use_.undo.offer({text, given, window, [&persistence = use_.persistence, snippet, use] {
                       if (*use) takeBackUse(persistence, *snippet, **use);
                     }});
  };
  use_.paste.pasteSnippet(std::move(content), match.snippet, std::u16string(match.matchedText),
                          std::move(count), life_.guard(std::move(offerUndo)));
}

}  // namespace quorlo
