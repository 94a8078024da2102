#include "app/settings/settings_controller.h"

#include "app/settings/json_list.h"
#include "base/log.h"
#include "store/context/fetch_request.h"
#include "store/records/ql_snippet.h"
#include "store/records/snippet_type.h"

#include <utility>
#include <variant>

namespace quorlo {
namespace {

constexpr Seconds kFormatBarDelay{0.25};

const Property& sortKey(SnippetSortOption option) {
  switch (option) {
    case SnippetSortOption::title:
      return QLSnippet::kTitle;
    case SnippetSortOption::creationDate:
      return QLSnippet::kCreationDate;
    case SnippetSortOption::modificationDate:
      return QLSnippet::kModifiedDate;
    case SnippetSortOption::abbreviation:
      return QLSnippet::kAbbreviation;
    case SnippetSortOption::type:
      return QLSnippet::kFormatted;
    case SnippetSortOption::useCount:
      return QLSnippet::kUseCount;
  }
  return QLSnippet::kCreationDate;
}

template <class Enum>
std::int64_t raw(Enum value) {
  return static_cast<std::int64_t>(value);
}

}  // namespace

SettingsController::SettingsController(UserDefaults& defaults, MainQueue& queue,
                                       const std::function<Date()>& clock,
                                       const std::function<std::optional<Date>()>& userCreationDate)
    : defaults_(defaults), queue_(queue) {
  const auto userCreation = userCreationDate();
  firstLaunchDefault_ = userCreation ? *userCreation : clock();
  externalChanges_ = defaults_.observeExternalChanges(
      [this](DefaultsDomain domain, const std::string& key) { notifyChange(domain, key); });
  if (!oldDefaultsHaveBeenCopied()) convertOldDefaults();
}

void SettingsController::setAccessibilityCheck(std::function<bool()> check) {
  accessibilityCheck_ = std::move(check);
}

void SettingsController::setFormatBarHandler(std::function<void(bool)> handler) {
  formatBarHandler_ = std::move(handler);
}

Subscription SettingsController::observe(Observer observer) {
  return observers_.add(std::move(observer));
}

void SettingsController::setAbbreviationsEnabled(bool on) {
  write(Setting::abbreviationsEnabled, on);
  // The monitor, told by now, switches back off when it may not watch keys.
  if (abbreviationsEnabled()) setAutoPasteIsEnabled(true);
}

AbbreviationTriggerType SettingsController::abbreviationsTriggerType() const {
  return static_cast<AbbreviationTriggerType>(integer(Setting::abbreviationsTriggerType));
}

void SettingsController::setAbbreviationsTriggerType(AbbreviationTriggerType type) {
  write(Setting::abbreviationsTriggerType, raw(type));
}

DelimiterKeys SettingsController::abbreviationDelimiterKey() const {
  return DelimiterKeys(integer(Setting::abbreviationDelimiterKey));
}

void SettingsController::setAbbreviationDelimiterKey(DelimiterKeys keys) {
  store(Setting::abbreviationDelimiterKey, keys.rawValue());
  activeAbbreviationKeyStrings_.clear();
  if (keys.empty()) store(Setting::abbreviationDelimiterKey, kSpaceDelimiter.rawValue());
  notifyChange(Setting::abbreviationDelimiterKey);
}

const std::set<std::u16string, std::less<>>& SettingsController::activeAbbreviationKeyStrings() const {
  if (activeAbbreviationKeyStrings_.empty()) {
    const auto selected = abbreviationDelimiterKey();
    for (const auto key : DelimiterKeys::members()) {
      if (selected.contains(key)) activeAbbreviationKeyStrings_.emplace(key.string());
    }
  }
  return activeAbbreviationKeyStrings_;
}

void SettingsController::setAutoPasteIsEnabled(bool on) {
  store(Setting::autoPasteIsEnabled, on);
  validateAutoPaste();
  notifyChange(Setting::autoPasteIsEnabled);
}

void SettingsController::validateAutoPaste() {
  if (!autoPasteIsEnabled()) return;
  if (accessibilityCheck_ && accessibilityCheck_()) return;
  logError("ERROR #htgrf3 - Unable to invoke CGEvent.tapCreate. Please enable Accessibility.");
  write(Setting::autoPasteIsEnabled, false);
}

void SettingsController::setPasteBetweenSnippetPartsDelay(Seconds pause) {
  write(Setting::pasteBetweenSnippetPartsDelay, pause.count());
}

void SettingsController::setRestorePateboardItemsDelay(Seconds wait) {
  write(Setting::restorePateboardItemsDelay, wait.count());
}

SnippetExpansionSound SettingsController::snippetExpansionSound() const {
  return *quorlo::snippetExpansionSound(text(Setting::snippetExpansionSound));
}

void SettingsController::setSnippetExpansionSound(SnippetExpansionSound sound) {
  write(Setting::snippetExpansionSound, std::string(rawValue(sound)));
}

SearchScopes SettingsController::searchScopes() const {
  return SearchScopes(integer(Setting::searchScopes));
}

void SettingsController::setSearchScopes(SearchScopes scopes) {
  write(Setting::searchScopes, scopes.rawValue());
}

SnippetSortOption SettingsController::snippetsSortOption() const {
  return static_cast<SnippetSortOption>(integer(Setting::snippetsSortOption));
}

void SettingsController::setSnippetsSortOption(SnippetSortOption option) {
  write(Setting::snippetsSortOption, raw(option));
}

std::vector<SortDescriptor> SettingsController::sortDescriptorsFor(SnippetSortOption option) const {
  return {SortDescriptor{&sortKey(option), ascendingSnippetSortation()}};
}

void SettingsController::setSelectedCategoryUUID(std::optional<std::string> uuid) {
  if (uuid) {
    write(Setting::selectedCategoryUUID, std::move(*uuid));
    return;
  }
  const auto& setting = describe(Setting::selectedCategoryUUID);
  defaults_.removeValue(setting.domain, setting.key);
  notifyChange(Setting::selectedCategoryUUID);
}

Date SettingsController::firstLaunch() const {
  const auto* const stored = currentValue(defaults_, Setting::firstLaunch);
  return stored ? std::get<Date>(*stored) : firstLaunchDefault_;
}

Date SettingsController::debugEnabledDate() const {
  return std::get<Date>(*currentValue(defaults_, Setting::debugEnabledDate));
}

std::optional<std::string> SettingsController::selectedCategoryUUID() const {
  const auto* const uuid = currentValue(defaults_, Setting::selectedCategoryUUID);
  return uuid ? std::optional(std::get<std::string>(*uuid)) : std::nullopt;
}

std::vector<std::string> SettingsController::selectedSnippetUUIDs() const {
  auto list = decodeJsonList(text(Setting::selectedSnippetUUIDs));
  if (list) return std::move(list).value();
  logError("ERROR #4JF47guff: " + list.error().message);
  return {};
}

void SettingsController::setSelectedSnippetUUIDs(const std::vector<std::string>& uuids) {
  write(Setting::selectedSnippetUUIDs, encodeJsonList(uuids));
}

PreviewWindowPosition SettingsController::previewWindowPosition() const {
  return static_cast<PreviewWindowPosition>(integer(Setting::previewWindowPosition));
}

void SettingsController::setPreviewWindowPosition(PreviewWindowPosition position) {
  write(Setting::previewWindowPosition, raw(position));
}

SnippetType SettingsController::defaultSnippetFormat() const {
  return static_cast<SnippetType>(integer(Setting::defaultSnippetFormat));
}

void SettingsController::setDefaultSnippetFormat(SnippetType format) {
  write(Setting::defaultSnippetFormat, raw(format));
}

void SettingsController::setShowFormatInspector(bool on) {
  store(Setting::showFormatInspector, on);
  queue_.runAfter(kFormatBarDelay, life_.guard([this, on] {
    if (formatBarHandler_) formatBarHandler_(on);
  }));
  notifyChange(Setting::showFormatInspector);
}

bool SettingsController::boolean(Setting setting) const {
  return std::get<bool>(*currentValue(defaults_, setting));
}

std::int64_t SettingsController::integer(Setting setting) const {
  return std::get<std::int64_t>(*currentValue(defaults_, setting));
}

Seconds SettingsController::delay(Setting setting) const {
  const auto& seconds = *currentValue(defaults_, setting);
  if (const auto* whole = std::get_if<std::int64_t>(&seconds)) return Seconds(static_cast<double>(*whole));
  return Seconds(std::get<double>(seconds));
}

std::string SettingsController::text(Setting setting) const {
  return std::get<std::string>(*currentValue(defaults_, setting));
}

void SettingsController::store(Setting setting, DefaultsValue newValue) {
  const auto& description = describe(setting);
  defaults_.setValue(description.domain, description.key, std::move(newValue));
}

void SettingsController::write(Setting setting, DefaultsValue newValue) {
  store(setting, std::move(newValue));
  notifyChange(setting);
}

void SettingsController::notifyChange(Setting setting) {
  const auto& description = describe(setting);
  notifyChange(description.domain, description.key);
}

void SettingsController::notifyChange(DefaultsDomain domain, std::string_view key) {
  const auto descriptions = settingDescriptions();
  for (std::size_t index = 0; index < descriptions.size(); ++index) {
    if (descriptions[index].domain != domain || descriptions[index].key != key) continue;
    const auto setting = static_cast<Setting>(index);
    if (setting == Setting::abbreviationDelimiterKey) activeAbbreviationKeyStrings_.clear();
    observers_.notify(setting);
  }
}

// Earlier versions had one switch per delimiter key. Only the first of those that are on is taken over,
// and the old search switches are left behind: both are intended.
void SettingsController::convertOldDefaults() {
  const auto isOn = [this](std::string_view key) {
    const auto* value = defaults_.value(DefaultsDomain::standard, key);
    const auto* on = value ? std::get_if<bool>(value) : nullptr;
    return on && *on;
  };
  DelimiterKeys keys;
  if (isOn("AbbreviationKeySpace")) {
    keys = kSpaceDelimiter;
  } else if (isOn("AbbreviationKeyTab")) {
    keys = kTabDelimiter;
  } else if (isOn("AbbreviationKeyReturn")) {
    keys = kReturnDelimiter;
  }
  setAbbreviationDelimiterKey(keys);
  setOldDefaultsHaveBeenCopied(true);
}

}  // namespace quorlo
