#pragma once

namespace quorlo {

class AbbreviationsMonitor;
class AccessibilityManager;
class PasteController;
class PersistenceController;
class QLSnippetMacroInterpreter;
class SettingsController;
class SoundManager;

// While it lives, shared() of each class returns the given instance. One at a time; main thread.
class SharedInstances {
 public:
  SharedInstances(SettingsController& settings, PersistenceController& persistence, SoundManager& sound,
                  QLSnippetMacroInterpreter& interpreter, AccessibilityManager& accessibility,
                  PasteController& paste, AbbreviationsMonitor& monitor);
  SharedInstances(const SharedInstances&) = delete;
  SharedInstances& operator=(const SharedInstances&) = delete;
  ~SharedInstances();
};

}  // namespace quorlo
