#include "engine/abbreviations_monitor.h"

#include "app/settings/settings_controller.h"
#include "base/log.h"
#include "engine/accessibility_manager.h"
#include "engine/expansion_rules.h"
#include "engine/expansion_undo.h"
#include "engine/typed_key.h"
#include "platform/main_queue.h"
#include "platform/mouse_monitor.h"
#include "platform/typing_context.h"
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
  });
  insertions_ = use_.paste.observeInsertions([this] { use_.undo.withdraw(); });
  use_.queue.runAfter(kFirstUpdateDelay, life_.guard([this] { updateEventTap(); }));
}

void AbbreviationsMonitor::updateEventTap() {
  abbreviationMouseEventMonitor.reset();
  if (!use_.settings.abbreviationsEnabled()) {
    if (_eventTap) {
      logInfo("Removing eventTap");
      _eventTap.reset();
    }
    return;
  }
  abbreviationMouseEventMonitor = use_.mouse.observeMouseDown([this](MouseButton button) {
    if (button != MouseButton::left) return use_.undo.withdraw();
    logDebug("leftMouseDown");
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
    monitor.forgetTyping();
    if (monitor._eventTap) monitor._eventTap->enable();
    return TapVerdict::pass;
  }
  if (type == TapEventType::keysPassedUnseen) monitor.forgetTyping();
  if (event == nullptr) return TapVerdict::pass;
  return monitor.handleKeyDown(*event) ? TapVerdict::swallow : TapVerdict::pass;
}

bool AbbreviationsMonitor::handleKeyDown(const KeyDownEvent& event) {
  const auto frontmost = use_.accessibility.frontmostApplication();
  if (use_.context.obstacle()) {
    forgetTyping();
    return false;
  }
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

  const bool addsText = typedKey(event) == TypedKey::text && !event.characters.empty();
  if (mayExpand && addsText && trigger == AbbreviationTriggerType::lastSymbol) {
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
    use_.undo.offer({text, given, window, [&persistence = use_.persistence, snippet, use] {
                       if (*use) takeBackUse(persistence, *snippet, **use);
                     }});
  };
  use_.paste.pasteSnippet(std::move(content), match.snippet, std::u16string(match.matchedText),
                          std::move(count), life_.guard(std::move(offerUndo)));
}

}  // namespace quorlo
