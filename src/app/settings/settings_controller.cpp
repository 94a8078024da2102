#include "app/settings/settings_controller.h"

#include "app/settings/json_list.h"
#include "base/log.h"
#include "store/fetch_request.h"
#include "store/ql_snippet.h"
#include "store/snippet_type.h"

#include <cmath>
#include <limits>
#include <utility>
#include <variant>

namespace quorlo {
namespace {

constexpr Seconds kDefaultPasteDelay{0.2};
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
  const auto* value = stored<std::int64_t>(Setting::abbreviationsTriggerType);
  const auto known = value ? enumCase(*value, kAbbreviationTriggerTypes) : std::nullopt;
  return known.value_or(AbbreviationTriggerType::delimiterKey);
}

void SettingsController::setAbbreviationsTriggerType(AbbreviationTriggerType type) {
  write(Setting::abbreviationsTriggerType, raw(type));
}

DelimiterKeys SettingsController::abbreviationDelimiterKey() const {
  constexpr auto kAllBits = (DelimiterKeys::RawValue{1} << DelimiterKeys::kMemberCount) - 1;
  return DelimiterKeys(integer(Setting::abbreviationDelimiterKey, kAllBits, kSpaceDelimiter.rawValue()));
}

void SettingsController::setAbbreviationDelimiterKey(DelimiterKeys keys) {
  store(Setting::abbreviationDelimiterKey, keys.rawValue());
  activeAbbreviationKeyStrings_.clear();
  if (keys.empty()) store(Setting::abbreviationDelimiterKey, kSpaceDelimiter.rawValue());
  const auto& [domain, key] = settingKey(Setting::abbreviationDelimiterKey);
  notifyChange(domain, key);
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
  const auto& [domain, key] = settingKey(Setting::autoPasteIsEnabled);
  notifyChange(domain, key);
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
  const auto* name = stored<std::string>(Setting::snippetExpansionSound);
  const auto known = name ? quorlo::snippetExpansionSound(*name) : std::nullopt;
  return known.value_or(SnippetExpansionSound::magnet);
}

void SettingsController::setSnippetExpansionSound(SnippetExpansionSound sound) {
  write(Setting::snippetExpansionSound, std::string(rawValue(sound)));
}

SearchScopes SettingsController::searchScopes() const {
  constexpr auto kAll = SearchScopes::all().rawValue();
  return SearchScopes(integer(Setting::searchScopes, kAll, kAll));
}

void SettingsController::setSearchScopes(SearchScopes scopes) {
  write(Setting::searchScopes, scopes.rawValue());
}

SnippetSortOption SettingsController::snippetsSortOption() const {
  const auto* value = stored<std::int64_t>(Setting::snippetsSortOption);
  const auto known = value ? enumCase(*value, kSnippetSortOptions) : std::nullopt;
  return known.value_or(SnippetSortOption::creationDate);
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
  const auto& [domain, key] = settingKey(Setting::selectedCategoryUUID);
  defaults_.removeValue(domain, key);
  notifyChange(domain, key);
}

std::vector<std::string> SettingsController::selectedSnippetUUIDs() const {
  const auto* json = stored<std::string>(Setting::selectedSnippetUUIDs);
  if (!json) return {};
  auto list = decodeJsonList(*json);
  if (list) return std::move(list).value();
  logError("ERROR #4JF47guff: " + list.error().message);
  return {};
}

void SettingsController::setSelectedSnippetUUIDs(const std::vector<std::string>& uuids) {
  write(Setting::selectedSnippetUUIDs, encodeJsonList(uuids));
}

PreviewWindowPosition SettingsController::previewWindowPosition() const {
  const auto* value = stored<std::int64_t>(Setting::previewWindowPosition);
  const auto known = value ? enumCase(*value, kPreviewWindowPositions) : std::nullopt;
  return known.value_or(PreviewWindowPosition::centerOfScreen);
}

void SettingsController::setPreviewWindowPosition(PreviewWindowPosition position) {
  write(Setting::previewWindowPosition, raw(position));
}

SnippetType SettingsController::defaultSnippetFormat() const {
  const auto* value = stored<std::int64_t>(Setting::defaultSnippetFormat);
  const auto known = value ? snippetType(*value) : std::nullopt;
  return known.value_or(SnippetType::plainText);
}

void SettingsController::setDefaultSnippetFormat(SnippetType format) {
  write(Setting::defaultSnippetFormat, raw(format));
}

void SettingsController::setShowFormatInspector(bool on) {
  store(Setting::showFormatInspector, on);
  queue_.runAfter(kFormatBarDelay, life_.guard([this, on] {
    if (formatBarHandler_) formatBarHandler_(on);
  }));
  const auto& [domain, key] = settingKey(Setting::showFormatInspector);
  notifyChange(domain, key);
}

template <class T>
const T* SettingsController::stored(Setting setting) const {
  const auto& [domain, key] = settingKey(setting);
  const auto* value = defaults_.value(domain, key);
  return value ? std::get_if<T>(value) : nullptr;
}

bool SettingsController::boolean(Setting setting, bool defaultValue) const {
  const auto* value = stored<bool>(setting);
  return value ? *value : defaultValue;
}

std::int64_t SettingsController::integer(Setting setting, std::int64_t highest,
                                         std::int64_t defaultValue) const {
  const auto* value = stored<std::int64_t>(setting);
  return value && *value >= 0 && *value <= highest ? *value : defaultValue;
}

std::int64_t SettingsController::count(Setting setting) const {
  return integer(setting, std::numeric_limits<std::int64_t>::max(), 0);
}

Seconds SettingsController::delay(Setting setting) const {
  auto seconds = std::numeric_limits<double>::quiet_NaN();
  if (const auto* real = stored<double>(setting)) seconds = *real;
  // A whole number, as somebody may type it into the file.
  if (const auto* whole = stored<std::int64_t>(setting)) seconds = static_cast<double>(*whole);
  return seconds >= 0 && seconds <= kMaxPasteDelay.count() ? Seconds(seconds) : kDefaultPasteDelay;
}

Date SettingsController::date(Setting setting, Date defaultValue) const {
  const auto* value = stored<Date>(setting);
  return value ? *value : defaultValue;
}

std::optional<std::string> SettingsController::text(Setting setting) const {
  const auto* value = stored<std::string>(setting);
  return value ? std::optional(*value) : std::nullopt;
}

void SettingsController::store(Setting setting, DefaultsValue value) {
  const auto& [domain, key] = settingKey(setting);
  defaults_.setValue(domain, key, std::move(value));
}

void SettingsController::write(Setting setting, DefaultsValue value) {
  store(setting, std::move(value));
  const auto& [domain, key] = settingKey(setting);
  notifyChange(domain, key);
}

void SettingsController::notifyChange(DefaultsDomain domain, std::string_view key) {
  for (std::size_t index = 0; index < kSettingKeys.size(); ++index) {
    if (kSettingKeys[index].domain != domain || kSettingKeys[index].key != key) continue;
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
