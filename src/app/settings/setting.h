#pragma once

#include "platform/user_defaults.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace quorlo {

// Every preference of the user, in the order of kSettingKeys.
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
};

struct SettingKey {
  DefaultsDomain domain;
  std::string_view key;
};

// Where each setting is stored. The misspellings are part of the stored format.
inline constexpr std::array<SettingKey, 39> kSettingKeys{{
    {DefaultsDomain::appGroup, "AbbreviationsEnabled"},
    {DefaultsDomain::appGroup, "SearchScopes"},
    {DefaultsDomain::standard, "firstLaunch"},
    {DefaultsDomain::standard, "WelcomeViewHasBeenShown"},
    {DefaultsDomain::standard, "numberOfLaunches"},
    {DefaultsDomain::standard, "numberOfLaunches"},  // shared with numberOfLaunches on purpose
    {DefaultsDomain::standard, "QLDebugEnabledDate"},
    {DefaultsDomain::standard, "SelectedCategoryUUID"},
    {DefaultsDomain::standard, "SelectedSnippetUUIDs"},
    {DefaultsDomain::standard, "ShowMacroReplacementPreviewInReplacementView"},
    {DefaultsDomain::standard, "ShowClipboardContentInReplacementView"},
    {DefaultsDomain::standard, "ShowAllMacrosInPreview"},
    {DefaultsDomain::standard, "ShowPreviewNextToEditorText"},
    {DefaultsDomain::standard, "ShowMacroReplacementPreviewInSnippetEditor"},
    {DefaultsDomain::standard, "PreviewWindowPosition"},
    {DefaultsDomain::standard, "ShowSymbolNextToMacro"},
    {DefaultsDomain::standard, "SnippetFormat"},
    {DefaultsDomain::standard, "SnippetsSortOption"},
    {DefaultsDomain::standard, "AscendingSnippetSortation"},
    {DefaultsDomain::standard, "ShowSnippetUseCount"},
    {DefaultsDomain::standard, "HideAbbreviationAddButton"},
    {DefaultsDomain::standard, "QLDebugModeEnabled"},
    {DefaultsDomain::standard, "OpenMacroSettingsAfterInsert"},
    {DefaultsDomain::standard, "AutoPasteEnabled"},
    {DefaultsDomain::standard, "ExpandAbbreviationWithinWord"},
    {DefaultsDomain::standard, "RemoveTriggerKey"},
    {DefaultsDomain::standard, "PasteBetweenSnippetPartsDelay"},
    {DefaultsDomain::standard, "UseTransparentBacgroundForPreview"},
    {DefaultsDomain::standard, "RestorePateboardItemsDelay"},
    {DefaultsDomain::standard, "RestorePateboardItems"},
    {DefaultsDomain::standard, "AbbreviationsTriggerType"},
    {DefaultsDomain::standard, "AbbreviationDelimiterKey"},
    {DefaultsDomain::standard, "OldDefaultsHaveBeenCopied"},
    {DefaultsDomain::standard, "SnippetSound"},
    {DefaultsDomain::standard, "CustomSnippetSound"},
    {DefaultsDomain::standard, "ShowQOInMenuBar"},
    {DefaultsDomain::standard, "PlaySound"},
    {DefaultsDomain::standard, "ShowNotificationForExpension"},
    {DefaultsDomain::standard, "ShowFormatInspector"},
}};
static_assert(kSettingKeys.size() == static_cast<std::size_t>(Setting::showFormatInspector) + 1);

constexpr const SettingKey& settingKey(Setting setting) {
  return kSettingKeys[static_cast<std::size_t>(setting)];
}

}  // namespace quorlo
