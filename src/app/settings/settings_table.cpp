#include "app/settings/delimiter_keys.h"
#include "app/settings/search_scopes.h"
#include "app/settings/setting.h"
#include "app/settings/settings_controller.h"
#include "app/settings/settings_enumerations.h"
#include "store/records/snippet_type.h"
#include "text/utf.h"

#include <algorithm>
#include <array>
#include <limits>
#include <variant>

namespace quorlo {
namespace {

using Choices = std::vector<SettingChoice>;
using Kind = SettingKind;
using Owner = SettingOwner;

constexpr auto kStandard = DefaultsDomain::standard;
constexpr auto kAppGroup = DefaultsDomain::appGroup;
constexpr double kDefaultPasteDelay = 0.2;

template <class Enum>
std::int64_t raw(Enum value) {
  return static_cast<std::int64_t>(value);
}

Choices delimiterKeys() {
  Choices choices;
  for (const auto key : DelimiterKeys::members()) choices.push_back({key.rawValue(), toUtf8(key.string())});
  choices[0].name = "space";
  choices[1].name = "tab";
  choices[2].name = "return";
  return choices;
}

Choices sounds() {
  Choices choices;
  for (const auto sound : kSnippetExpansionSounds)
    choices.push_back({raw(sound), std::string(rawValue(sound))});
  return choices;
}

SettingDescription flag(std::string_view key, bool defaultValue, Owner owner, std::string_view meaning,
                        DefaultsDomain domain = kStandard) {
  return {key, domain, Kind::boolean, defaultValue, {}, owner, meaning};
}

SettingDescription delay(std::string_view key, Owner owner, std::string_view meaning) {
  return {key, kStandard, Kind::seconds, kDefaultPasteDelay, {}, owner, meaning};
}

SettingDescription choice(std::string_view key, std::int64_t defaultValue, Choices choices,
                          std::string_view meaning) {
  return {key, kStandard, Kind::choice, defaultValue, std::move(choices), Owner::user, meaning};
}

SettingDescription kept(std::string_view key, Kind kind, std::optional<DefaultsValue> defaultValue,
                        std::string_view meaning) {
  return {key, kStandard, kind, std::move(defaultValue), {}, Owner::program, meaning};
}

std::array<SettingDescription, kSettingCount> makeTable() {
  constexpr auto user = Owner::user;
  constexpr auto program = Owner::program;
  return {
      flag("AbbreviationsEnabled", false, user, "Abbreviations expand as they are typed.", kAppGroup),
      {"SearchScopes",
       kAppGroup,
       Kind::set,
       SearchScopes::all().rawValue(),
       {{kTitleScope.rawValue(), "title"},
        {kAbbreviationScope.rawValue(), "abbreviation"},
        {kTextScope.rawValue(), "text"}},
       user,
       "Where the menu's search looks."},
      kept("firstLaunch", Kind::date, {}, "When Quorlo was started for the first time."),
      flag("WelcomeViewHasBeenShown", false, program, "The welcome window has been shown."),
      kept("numberOfLaunches", Kind::count, std::int64_t{0}, "Starts, and closings of the library window."),
      kept("numberOfLaunches", Kind::count, std::int64_t{0}, "Starts, and closings of the library window."),
      kept("QLDebugEnabledDate", Kind::date, kDistantPast, "When debug mode was switched on last."),
      kept("SelectedCategoryUUID", Kind::text, {}, "The folder that is selected in the library window."),
      kept("SelectedSnippetUUIDs", Kind::list, "[]", "The snippets that are selected in the library window."),
      flag("ShowMacroReplacementPreviewInReplacementView", true, user,
           "The fill-in window shows how the snippet will read."),
      flag("ShowClipboardContentInReplacementView", false, user,
           "The fill-in window shows what is on the clipboard."),
      flag("ShowAllMacrosInPreview", false, user, "The fill-in window shows macros that ask nothing, too."),
      flag("ShowPreviewNextToEditorText", true, program, "The editor shows a preview beside the text."),
      flag("ShowMacroReplacementPreviewInSnippetEditor", false, program,
           "The editor shows what macros stand for."),
      choice("PreviewWindowPosition", raw(PreviewWindowPosition::centerOfScreen),
             {{raw(PreviewWindowPosition::nextToCursor), "nextToCursor"},
              {raw(PreviewWindowPosition::centerOfScreen), "centerOfScreen"}},
             "Where the fill-in window opens."),
      flag("ShowSymbolNextToMacro", true, program, "The editor marks macros with a symbol."),
      choice("SnippetFormat", raw(SnippetType::plainText),
             {{raw(SnippetType::plainText), "plainText"},
              {raw(SnippetType::formatted), "formatted"},
              {raw(SnippetType::image), "image"},
              {raw(SnippetType::code), "code"}},
             "The format of new snippets."),
      choice("SnippetsSortOption", raw(SnippetSortOption::creationDate),
             {{raw(SnippetSortOption::title), "title"},
              {raw(SnippetSortOption::creationDate), "creationDate"},
              {raw(SnippetSortOption::modificationDate), "modificationDate"},
              {raw(SnippetSortOption::abbreviation), "abbreviation"},
              {raw(SnippetSortOption::type), "type"},
              {raw(SnippetSortOption::useCount), "useCount"}},
             "What lists of snippets are sorted by."),
      flag("AscendingSnippetSortation", false, user, "Lists of snippets are in ascending order."),
      flag("ShowSnippetUseCount", true, user, "Lists show how often a snippet was used."),
      flag("HideAbbreviationAddButton", true, program, "The editor has no button that adds an abbreviation."),
      flag("QLDebugModeEnabled", false, user, "Quorlo writes a detailed log; ends by itself after 24 hours."),
      flag("OpenMacroSettingsAfterInsert", true, program, "A macro's settings open when it is inserted."),
      flag("AutoPasteEnabled", false, user,
           "A snippet chosen in the menu is pasted into the application in front."),
      flag("ExpandAbbreviationWithinWord", true, user, "Abbreviations expand at the end of a word, too."),
      flag("RemoveTriggerKey", false, user, "The delimiter that made an abbreviation expand is removed."),
      delay("PasteBetweenSnippetPartsDelay", user, "The pause between the parts of a snippet, in seconds."),
      flag("UseTransparentBacgroundForPreview", true, user, "The fill-in window is translucent."),
      delay("RestorePateboardItemsDelay", program, "Kept for other versions of Quorlo."),
      flag("RestorePateboardItems", true, user,
           "The clipboard is given back its content after an expansion."),
      choice("AbbreviationsTriggerType", raw(AbbreviationTriggerType::delimiterKey),
             {{raw(AbbreviationTriggerType::lastSymbol), "lastSymbol"},
              {raw(AbbreviationTriggerType::delimiterKey), "delimiterKey"}},
             "What makes an abbreviation expand: its last symbol, or a delimiter typed after it."),
      {"AbbreviationDelimiterKey", kStandard, Kind::set, kSpaceDelimiter.rawValue(), delimiterKeys(), user,
       "The keys and symbols that count as delimiters."},
      flag("OldDefaultsHaveBeenCopied", false, program,
           "The settings of an earlier version were taken over."),
      {"SnippetSound", kStandard, Kind::word, std::string(rawValue(SnippetExpansionSound::magnet)), sounds(),
       user, "The sound of an expansion; Custom is the one that CustomSnippetSound names."},
      {"CustomSnippetSound",
       kStandard,
       Kind::text,
       std::string(),
       {},
       user,
       "The name of a sound file in the folder of custom sounds."},
      flag("ShowQOInMenuBar", true, user, "Quorlo has an icon in the tray."),
      flag("PlaySound", true, user, "An expansion plays a sound."),
      flag("ShowNotificationForExpension", true, user, "A notification follows an expansion."),
      flag("ShowFormatInspector", true, user, "The editor shows a format bar for formatted text."),
      flag("ExpandWhileInputMethodIsActive", false, user,
           "Abbreviations expand also while an input method (IBus, fcitx5) makes text of the keys."),
      flag("UndoExpansionWithBackspace", true, user,
           "Backspace right after an expansion gives the abbreviation back as it was typed."),
      flag("KeepsBackups", true, user,
           "Quorlo makes a backup of the library on each day on which something was changed."),
  };
}

std::int64_t allChoices(const SettingDescription& setting) {
  std::int64_t sum = 0;
  for (const auto& each : setting.choices) sum |= each.rawValue;
  return sum;
}

bool isDelay(const DefaultsValue& value) {
  auto seconds = std::numeric_limits<double>::quiet_NaN();
  if (const auto* real = std::get_if<double>(&value)) seconds = *real;
  // A whole number, as somebody may type it into the file.
  if (const auto* whole = std::get_if<std::int64_t>(&value)) seconds = static_cast<double>(*whole);
  return seconds >= 0 && seconds <= kMaxPasteDelay.count();
}

}  // namespace

std::span<const SettingDescription, kSettingCount> settingDescriptions() {
  static const auto table = makeTable();
  return table;
}

bool allows(const SettingDescription& setting, const DefaultsValue& value) {
  const auto* const number = std::get_if<std::int64_t>(&value);
  const auto* const text = std::get_if<std::string>(&value);
  switch (setting.kind) {
    case Kind::boolean:
      return std::holds_alternative<bool>(value);
    case Kind::count:
      return number && *number >= 0;
    case Kind::seconds:
      return isDelay(value);
    case Kind::date:
      return std::holds_alternative<Date>(value);
    case Kind::text:
    case Kind::list:
      return text != nullptr;
    case Kind::choice:
      return number &&
             std::ranges::find(setting.choices, *number, &SettingChoice::rawValue) != setting.choices.end();
    case Kind::word:
      return text && std::ranges::find(setting.choices, *text, &SettingChoice::name) != setting.choices.end();
    case Kind::set:
      return number && *number >= 0 && *number <= allChoices(setting);
  }
  return false;
}

const DefaultsValue* currentValue(const UserDefaults& defaults, Setting setting) {
  const auto& description = describe(setting);
  const auto* const stored = defaults.value(description.domain, description.key);
  if (stored && allows(description, *stored)) return stored;
  return description.defaultValue ? &*description.defaultValue : nullptr;
}

}  // namespace quorlo
