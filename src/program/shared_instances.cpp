#include "program/shared_instances.h"

#include "app/settings/settings_controller.h"
#include "app/settings/sound_manager.h"
#include "base/fatal.h"
#include "engine/abbreviations_monitor.h"
#include "engine/accessibility_manager.h"
#include "engine/paste/paste_controller.h"
#include "macros/ql_snippet_macro_interpreter.h"
#include "store/persistence_controller.h"

namespace quorlo {
namespace {

template <class T>
T* bound = nullptr;

template <class T>
T& sharedInstance() {
  if (bound<T> == nullptr) fatal("A shared instance was asked for before the program was built.");
  return *bound<T>;
}

}  // namespace

SharedInstances::SharedInstances(SettingsController& settings, PersistenceController& persistence,
                                 SoundManager& sound, QLSnippetMacroInterpreter& interpreter,
                                 AccessibilityManager& accessibility, PasteController& paste,
                                 AbbreviationsMonitor& monitor) {
  bound<SettingsController> = &settings;
  bound<PersistenceController> = &persistence;
  bound<SoundManager> = &sound;
  bound<QLSnippetMacroInterpreter> = &interpreter;
  bound<AccessibilityManager> = &accessibility;
  bound<PasteController> = &paste;
  bound<AbbreviationsMonitor> = &monitor;
}

SharedInstances::~SharedInstances() {
  bound<SettingsController> = nullptr;
  bound<PersistenceController> = nullptr;
  bound<SoundManager> = nullptr;
  bound<QLSnippetMacroInterpreter> = nullptr;
  bound<AccessibilityManager> = nullptr;
  bound<PasteController> = nullptr;
  bound<AbbreviationsMonitor> = nullptr;
}

SettingsController& SettingsController::shared() {
  return sharedInstance<SettingsController>();
}
PersistenceController& PersistenceController::shared() {
  return sharedInstance<PersistenceController>();
}
SoundManager& SoundManager::shared() {
  return sharedInstance<SoundManager>();
}
QLSnippetMacroInterpreter& QLSnippetMacroInterpreter::shared() {
  return sharedInstance<QLSnippetMacroInterpreter>();
}
AccessibilityManager& AccessibilityManager::shared() {
  return sharedInstance<AccessibilityManager>();
}
PasteController& PasteController::shared() {
  return sharedInstance<PasteController>();
}
AbbreviationsMonitor& AbbreviationsMonitor::shared() {
  return sharedInstance<AbbreviationsMonitor>();
}

}  // namespace quorlo
