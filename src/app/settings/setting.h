#pragma once

#include "platform/user_defaults.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// Every preference of the user, in the order of their table.
enum class Setting {
  abbreviationsEnabled,
  searchScopes,
  firstLaunch,
  welcomeViewHasBeenShown,
  numberOfLaunches,
  numberOfEditorCloses,
  debugEnabledDate,
  selectedCategoryUUID,
  selectedSnippetUUIDs,
  showMacroReplacementPreviewInReplacementView,
  showClipboardContentInReplacementView,
  showAllMacrosInPreview,
  showPreviewNextToEditorText,
  showMacroReplacementPreviewInSnippetEditor,
  previewWindowPosition,
  showSymbolNextToMacro,
  defaultSnippetFormat,
  snippetsSortOption,
  ascendingSnippetSortation,
  showSnippetUseCount,
  hideAbbreviationAddButton,
  debugModeEnabled,
  openMacroSettingsAfterInsert,
  autoPasteIsEnabled,
  expandAbbreviationWithinWord,
  removeTriggerKey,
  pasteBetweenSnippetPartsDelay,
  useTransparentBacgroundForPreview,
  restorePateboardItemsDelay,
  restorePateboardItems,
  abbreviationsTriggerType,
  abbreviationDelimiterKey,
  oldDefaultsHaveBeenCopied,
  snippetExpansionSound,
  customSnippetSound,
  showAppInMenuBar,
  playSound,
  showNotificationForExpension,
  showFormatInspector,
  expandWhileInputMethodIsActive,
  undoExpansionWithBackspace,
  keepsBackups,
};
inline constexpr std::size_t kSettingCount =
    static_cast<std::size_t>(Setting::keepsBackups) + 1;

// What the values of a setting are, and with it how they are stored.
enum class SettingKind {
  boolean,
  count,    // a whole number from 0 on
  seconds,  // a number from 0 to kMaxPasteDelay; whole ones are understood too
  date,
  text,
  list,    // of texts, stored as the JSON text of an array
  choice,  // one of the choices, stored as its number
  word,    // one of the choices, stored as its name
  set,     // any of the choices, stored as the sum of their numbers
};

struct SettingChoice {
  std::int64_t rawValue;
  std::string name;  // how people call it who do not see the settings window
};

// Others may read every setting; those that Quorlo keeps for itself are changed by it alone.
enum class SettingOwner { user, program };

struct SettingDescription {
  std::string_view key;
  DefaultsDomain domain;
  SettingKind kind;
  std::optional<DefaultsValue> defaultValue;  // absent where there is none
  std::vector<SettingChoice> choices;
  SettingOwner owner;
  std::string_view meaning;
};

// All of them, in the order of `Setting`. The misspellings are part of the stored format.
std::span<const SettingDescription, kSettingCount> settingDescriptions();

inline const SettingDescription& describe(Setting setting) {
  return settingDescriptions()[static_cast<std::size_t>(setting)];
}

// Whether a stored value is one that the setting can have; any other reads as the default.
bool allows(const SettingDescription& setting, const DefaultsValue& value);

// The stored value, or the default where none is stored or one that the setting cannot have; null where there
// is none. Holds until the defaults change next.
const DefaultsValue* currentValue(const UserDefaults& defaults, Setting setting);

}  // namespace quorlo
