#pragma once

#include "base/life_token.h"
#include "base/subscription.h"
#include "engine/paste/paste_controller.h"
#include "platform/event_tap.h"
#include "platform/typing_context.h"
#include "text/graphemes.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace quorlo {

class AccessibilityManager;
class ExpansionLookup;
class ExpansionUndo;
class FrontWindow;
class MainQueue;
class ManagedObjectContext;
class MouseMonitor;
class PersistenceController;
class QLSnippet;
class SettingsController;
class Workspace;
struct RunningApplication;

// Watches every key typed in any application, recognises when the tail of what was typed is the
// abbreviation of a live snippet, and hands the snippet to the paste controller. One instance; main
// thread. What a key press costs depends neither on how much was typed nor on the size of the library.
//
// Most keys complete nothing, so the tap passes them unasked. They are added to the typed text before the next
// key that the monitor is asked about, and count for the place of the one before: the tap asks as soon as
// TypingContext::stamp() is another.
class AbbreviationsMonitor {
 public:
  struct Dependencies {
    MainQueue& queue;
    EventTap& tap;
    MouseMonitor& mouse;
    Workspace& workspace;
    TypingContext& context;
    SettingsController& settings;
    AccessibilityManager& accessibility;
    PersistenceController& persistence;
    const ExpansionLookup& lookup;
    const FrontWindow& frontWindow;
    PasteController& paste;
    ExpansionUndo& undo;
  };

  // Monitoring begins 0.1 s later, if abbreviations are enabled. The references must outlive the monitor.
  explicit AbbreviationsMonitor(const Dependencies& dependencies);

  static AbbreviationsMonitor& shared();

  // Brings monitoring in line with the setting AbbreviationsEnabled.
  void updateEventTap();

  // `userInfo` is the monitor.
  static TapVerdict eventTapCallback(TapEventType type, const KeyDownEvent* event, void* userInfo);

  // True means that the key press is swallowed.
  bool handleKeyDown(const KeyDownEvent& event);

  struct Match {
    std::shared_ptr<QLSnippet> snippet;  // null for none
    std::u16string_view matchedText;     // a part of the candidate
  };

  // The live snippet whose abbreviation is `candidate` or, within a word, a tail of `fullText`: the
  // shortest that matches, up to 29 characters. `depth` is the length of the next tail to try.
  Match findSnippet(std::u16string_view candidate, std::u16string_view fullText, std::size_t fullTextCount,
                    bool withinWord, int depth) const;

  // What was typed since the last reset.
  std::u16string_view typedText();

 private:
  // Where the user types.
  struct Place {
    std::uint64_t stamp = 0;  // 0 when it is not known whether the rest still holds
    std::shared_ptr<const RunningApplication> application;
    std::optional<TypingObstacle> obstacle;
  };
  EventTap::Port* eventTap();
  Place currentPlace() const;
  void takePassedKeys();
  void choosePassedKeys();
  void setPassedKeysStamp(std::uint64_t stamp);
  bool handle(const KeyDownEvent& event);
  bool isApplicationExcluded(const std::string& bundleIdentifier) const;
  bool isAllowed(const QLSnippet& snippet, const RunningApplication* application) const;
  Match findTypedAbbreviation() const;
  void forgetTyping();
  void editBuffer(const KeyDownEvent& event);
  void expand(const Match& match, std::u16string_view delimiter);

  Dependencies use_;
  ManagedObjectContext& managedObjectContext;
  GraphemeBuffer potentialAbbreviation;
  Subscription abbreviationMouseEventMonitor;
  std::unique_ptr<EventTap::Port> _eventTap;
  std::shared_ptr<const RunningApplication> lastActiveApplication;
  Place place_;                        // of the key that the monitor was asked about last
  std::uint64_t passedKeysStamp_ = 0;  // of the place in which keys are passed unasked; 0 for none
  Subscription settingsObservation_;
  Subscription insertions_;
  LifeToken life_;
};

}  // namespace quorlo
