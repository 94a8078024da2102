#pragma once

#include "app/settings/delimiter_keys.h"
#include "app/settings/search_scopes.h"
#include "app/settings/setting.h"
#include "app/settings/settings_enumerations.h"
#include "base/date.h"
#include "base/life_token.h"
#include "base/observers.h"
#include "base/subscription.h"
#include "platform/main_queue.h"
#include "platform/user_defaults.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

enum class SnippetType;
struct SortDescriptor;

// Stands for a moment long before any other; differences from it are still representable.
inline constexpr Date kDistantPast{std::chrono::seconds(-2'208'988'800)};  // 1900-01-01

// Longer pauses than this within one expansion are taken for a mistake.
inline constexpr Seconds kMaxPasteDelay{60};

// Every preference of the user (setting.h has their table). A read gives what is stored now, or the default
// when nothing is stored, when the value is of another type or when it is none that the setting can have (an
// unknown raw value, a negative or absurd delay). A write stores first, then the setting's own rule runs,
// then observers are told. Reads touch no file and allocate nothing but the texts and lists they return. One
// instance; main thread.
class SettingsController {
 public:
  using Observer = std::function<void(Setting)>;

  // `userCreationDate` is asked once, for the default of firstLaunch: when the record of the
  // current user was made, if there is one. The references must outlive the controller.
  SettingsController(UserDefaults& defaults, MainQueue& queue, const std::function<Date()>& clock,
                     const std::function<std::optional<Date>()>& userCreationDate);
  SettingsController(const SettingsController&) = delete;
  SettingsController& operator=(const SettingsController&) = delete;

  static SettingsController& shared();

  // How to ask for the permission to post keys, the user being told where to grant it. Until this is set
  // it counts as missing.
  void setAccessibilityCheck(std::function<bool()> check);
  // The editor's format bar is shown or hidden by this; absent while there is no editor.
  void setFormatBarHandler(std::function<void(bool shown)> handler);

  // Told of every write and of what another process changed, also when the value stayed the same.
  // Settings that share a key are named both.
  Subscription observe(Observer observer);

  // Abbreviations.

  // The master switch. The observers start or stop the monitor; if the switch is still on after that,
  // Auto-Paste is switched on too. Switching off leaves Auto-Paste as it is.
  bool abbreviationsEnabled() const { return boolean(Setting::abbreviationsEnabled); }
  void setAbbreviationsEnabled(bool on);

  AbbreviationTriggerType abbreviationsTriggerType() const;
  void setAbbreviationsTriggerType(AbbreviationTriggerType type);

  // Never left empty by a write: an empty set becomes space.
  DelimiterKeys abbreviationDelimiterKey() const;
  void setAbbreviationDelimiterKey(DelimiterKeys keys);

  // The strings of the selected delimiter keys. The reference holds, its contents until the selection
  // changes.
  const std::set<std::u16string, std::less<>>& activeAbbreviationKeyStrings() const;

  bool expandAbbreviationWithinWord() const { return boolean(Setting::expandAbbreviationWithinWord); }
  void setExpandAbbreviationWithinWord(bool on) { write(Setting::expandAbbreviationWithinWord, on); }

  bool expandWhileInputMethodIsActive() const { return boolean(Setting::expandWhileInputMethodIsActive); }
  void setExpandWhileInputMethodIsActive(bool on) { write(Setting::expandWhileInputMethodIsActive, on); }

  bool removeTriggerKey() const { return boolean(Setting::removeTriggerKey); }
  void setRemoveTriggerKey(bool on) { write(Setting::removeTriggerKey, on); }

  // Backspace right after an expansion gives the abbreviation back.
  bool undoExpansionWithBackspace() const { return boolean(Setting::undoExpansionWithBackspace); }
  void setUndoExpansionWithBackspace(bool on) { write(Setting::undoExpansionWithBackspace, on); }

  // Set once the delimiter keys of earlier versions have been converted.
  bool oldDefaultsHaveBeenCopied() const { return boolean(Setting::oldDefaultsHaveBeenCopied); }
  void setOldDefaultsHaveBeenCopied(bool done) { write(Setting::oldDefaultsHaveBeenCopied, done); }

  // Pasting.

  // Only on while the permission to post keys is granted: switching it on without leaves it off.
  bool autoPasteIsEnabled() const { return boolean(Setting::autoPasteIsEnabled); }
  void setAutoPasteIsEnabled(bool on);
  // Switches Auto-Paste off if it is on without permission.
  void validateAutoPaste();

  // At most kMaxPasteDelay.
  Seconds pasteBetweenSnippetPartsDelay() const { return delay(Setting::pasteBetweenSnippetPartsDelay); }
  void setPasteBetweenSnippetPartsDelay(Seconds pause);

  // Kept for other versions of the program; the paste controller has a wait of its own.
  Seconds restorePateboardItemsDelay() const { return delay(Setting::restorePateboardItemsDelay); }
  void setRestorePateboardItemsDelay(Seconds wait);

  bool restorePateboardItems() const { return boolean(Setting::restorePateboardItems); }
  void setRestorePateboardItems(bool on) { write(Setting::restorePateboardItems, on); }

  bool showNotificationForExpension() const { return boolean(Setting::showNotificationForExpension); }
  void setShowNotificationForExpension(bool on) { write(Setting::showNotificationForExpension, on); }

  // Sound.

  bool playSound() const { return boolean(Setting::playSound); }
  void setPlaySound(bool on) { write(Setting::playSound, on); }

  SnippetExpansionSound snippetExpansionSound() const;
  void setSnippetExpansionSound(SnippetExpansionSound sound);

  // File name of the user's own sound in the custom-sounds folder.
  std::string customSnippetSound() const { return text(Setting::customSnippetSound); }
  void setCustomSnippetSound(std::string fileName) {
    write(Setting::customSnippetSound, std::move(fileName));
  }

  // Search and lists.

  SearchScopes searchScopes() const;
  void setSearchScopes(SearchScopes scopes);

  SnippetSortOption snippetsSortOption() const;
  void setSnippetsSortOption(SnippetSortOption option);

  bool ascendingSnippetSortation() const { return boolean(Setting::ascendingSnippetSortation); }
  void setAscendingSnippetSortation(bool on) { write(Setting::ascendingSnippetSortation, on); }

  // The order of snippet lists: one descriptor, in the direction of ascendingSnippetSortation.
  std::vector<SortDescriptor> sortDescriptorsFor(SnippetSortOption option) const;

  bool showSnippetUseCount() const { return boolean(Setting::showSnippetUseCount); }
  void setShowSnippetUseCount(bool on) { write(Setting::showSnippetUseCount, on); }

  bool showAppInMenuBar() const { return boolean(Setting::showAppInMenuBar); }
  void setShowAppInMenuBar(bool on) { write(Setting::showAppInMenuBar, on); }

  // The life of the program.

  // When nothing is stored, when the user's record was made, else when this controller was.
  Date firstLaunch() const;
  void setFirstLaunch(Date moment) { write(Setting::firstLaunch, moment); }

  bool welcomeViewHasBeenShown() const { return boolean(Setting::welcomeViewHasBeenShown); }
  void setWelcomeViewHasBeenShown(bool shown) { write(Setting::welcomeViewHasBeenShown, shown); }

  // Launches and closings of the editor are one number, stored once.
  std::int64_t numberOfLaunches() const { return integer(Setting::numberOfLaunches); }
  void setNumberOfLaunches(std::int64_t number) { write(Setting::numberOfLaunches, number); }
  std::int64_t numberOfEditorCloses() const { return integer(Setting::numberOfEditorCloses); }
  void setNumberOfEditorCloses(std::int64_t number) { write(Setting::numberOfEditorCloses, number); }

  bool debugModeEnabled() const { return boolean(Setting::debugModeEnabled); }
  void setDebugModeEnabled(bool on) { write(Setting::debugModeEnabled, on); }
  // Copies of the library are made without being asked for.
  bool keepsBackups() const { return boolean(Setting::keepsBackups); }
  void setKeepsBackups(bool on) { write(Setting::keepsBackups, on); }

  // When debug mode was last switched on.
  Date debugEnabledDate() const;
  void setDebugEnabledDate(Date moment) { write(Setting::debugEnabledDate, moment); }

  // Editor and fill-in window.

  std::optional<std::string> selectedCategoryUUID() const;
  void setSelectedCategoryUUID(std::optional<std::string> uuid);

  std::vector<std::string> selectedSnippetUUIDs() const;
  void setSelectedSnippetUUIDs(const std::vector<std::string>& uuids);

  bool showMacroReplacementPreviewInReplacementView() const {
    return boolean(Setting::showMacroReplacementPreviewInReplacementView);
  }
  void setShowMacroReplacementPreviewInReplacementView(bool on) {
    write(Setting::showMacroReplacementPreviewInReplacementView, on);
  }

  bool showClipboardContentInReplacementView() const {
    return boolean(Setting::showClipboardContentInReplacementView);
  }
  void setShowClipboardContentInReplacementView(bool on) {
    write(Setting::showClipboardContentInReplacementView, on);
  }

  bool showAllMacrosInPreview() const { return boolean(Setting::showAllMacrosInPreview); }
  void setShowAllMacrosInPreview(bool on) { write(Setting::showAllMacrosInPreview, on); }

  bool showPreviewNextToEditorText() const { return boolean(Setting::showPreviewNextToEditorText); }
  void setShowPreviewNextToEditorText(bool on) { write(Setting::showPreviewNextToEditorText, on); }

  bool showMacroReplacementPreviewInSnippetEditor() const {
    return boolean(Setting::showMacroReplacementPreviewInSnippetEditor);
  }
  void setShowMacroReplacementPreviewInSnippetEditor(bool on) {
    write(Setting::showMacroReplacementPreviewInSnippetEditor, on);
  }

  PreviewWindowPosition previewWindowPosition() const;
  void setPreviewWindowPosition(PreviewWindowPosition position);

  bool useTransparentBacgroundForPreview() const {
    return boolean(Setting::useTransparentBacgroundForPreview);
  }
  void setUseTransparentBacgroundForPreview(bool on) {
    write(Setting::useTransparentBacgroundForPreview, on);
  }

  bool showSymbolNextToMacro() const { return boolean(Setting::showSymbolNextToMacro); }
  void setShowSymbolNextToMacro(bool on) { write(Setting::showSymbolNextToMacro, on); }

  bool openMacroSettingsAfterInsert() const { return boolean(Setting::openMacroSettingsAfterInsert); }
  void setOpenMacroSettingsAfterInsert(bool on) { write(Setting::openMacroSettingsAfterInsert, on); }

  // Of new snippets.
  SnippetType defaultSnippetFormat() const;
  void setDefaultSnippetFormat(SnippetType format);

  bool hideAbbreviationAddButton() const { return boolean(Setting::hideAbbreviationAddButton); }
  void setHideAbbreviationAddButton(bool on) { write(Setting::hideAbbreviationAddButton, on); }

  // A write reaches the format bar handler 0.25 s later.
  bool showFormatInspector() const { return boolean(Setting::showFormatInspector); }
  void setShowFormatInspector(bool on);

 private:
  bool boolean(Setting setting) const;
  std::int64_t integer(Setting setting) const;
  Seconds delay(Setting setting) const;
  std::string text(Setting setting) const;

  void store(Setting setting, DefaultsValue newValue);
  void write(Setting setting, DefaultsValue newValue);
  void notifyChange(Setting setting);
  void notifyChange(DefaultsDomain domain, std::string_view key);
  void convertOldDefaults();

  UserDefaults& defaults_;
  MainQueue& queue_;
  Date firstLaunchDefault_;
  std::function<bool()> accessibilityCheck_;
  std::function<void(bool)> formatBarHandler_;
  mutable std::set<std::u16string, std::less<>> activeAbbreviationKeyStrings_;
  Observers<Setting> observers_;
  Subscription externalChanges_;
  LifeToken life_;
};

}  // namespace quorlo
