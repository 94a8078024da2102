#include "app/settings/settings_controller.h"
#include "base/log.h"
#include "fakes/fake_main_queue.h"
#include "fakes/fake_user_defaults.h"
#include "store/fetch_request.h"
#include "store/ql_snippet.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace quorlo {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto kStandard = DefaultsDomain::standard;
constexpr auto kGroup = DefaultsDomain::appGroup;
constexpr Date kNow{std::chrono::hours(500'000)};

class SettingsControllerTest : public testing::Test {
 protected:
  // As a start of the program does.
  SettingsController& start() {
    settings_.emplace(
        defaults_, queue_, [] { return kNow; }, [this] { return userCreation_; });
    settings_->setAccessibilityCheck([this] { return trusted_; });
    return *settings_;
  }

  template <class T>
  std::optional<T> stored(DefaultsDomain domain, std::string_view key) const {
    const auto* value = defaults_.value(domain, key);
    return value && std::holds_alternative<T>(*value) ? std::optional(std::get<T>(*value)) : std::nullopt;
  }

  FakeUserDefaults defaults_;
  FakeMainQueue queue_;
  std::optional<Date> userCreation_;
  bool trusted_ = true;
  std::optional<SettingsController> settings_;
  std::vector<std::string> log_;
  Subscription logged_ = redirectLog([this](LogLevel, std::string_view line) { log_.emplace_back(line); });
};

TEST_F(SettingsControllerTest, KeepsEachSwitchUnderItsOwnKey) {
  using S = SettingsController;
  struct Switch {
    const char* key;
    bool defaultValue;
    bool (S::*get)() const;
    void (S::*set)(bool);
    DefaultsDomain domain = kStandard;
  };
  auto& settings = start();
  for (const Switch& each : std::vector<Switch>{
           {"AbbreviationsEnabled", false, &S::abbreviationsEnabled, &S::setAbbreviationsEnabled, kGroup},
           {"WelcomeViewHasBeenShown", false, &S::welcomeViewHasBeenShown, &S::setWelcomeViewHasBeenShown},
           {"ShowMacroReplacementPreviewInReplacementView", true,
            &S::showMacroReplacementPreviewInReplacementView,
            &S::setShowMacroReplacementPreviewInReplacementView},
           {"ShowClipboardContentInReplacementView", false, &S::showClipboardContentInReplacementView,
            &S::setShowClipboardContentInReplacementView},
           {"ShowAllMacrosInPreview", false, &S::showAllMacrosInPreview, &S::setShowAllMacrosInPreview},
           {"ShowPreviewNextToEditorText", true, &S::showPreviewNextToEditorText,
            &S::setShowPreviewNextToEditorText},
           {"ShowMacroReplacementPreviewInSnippetEditor", false,
            &S::showMacroReplacementPreviewInSnippetEditor,
            &S::setShowMacroReplacementPreviewInSnippetEditor},
           {"ShowSymbolNextToMacro", true, &S::showSymbolNextToMacro, &S::setShowSymbolNextToMacro},
           {"AscendingSnippetSortation", false, &S::ascendingSnippetSortation,
            &S::setAscendingSnippetSortation},
           {"ShowSnippetUseCount", true, &S::showSnippetUseCount, &S::setShowSnippetUseCount},
           {"HideAbbreviationAddButton", true, &S::hideAbbreviationAddButton,
            &S::setHideAbbreviationAddButton},
           {"QLDebugModeEnabled", false, &S::debugModeEnabled, &S::setDebugModeEnabled},
           {"OpenMacroSettingsAfterInsert", true, &S::openMacroSettingsAfterInsert,
            &S::setOpenMacroSettingsAfterInsert},
           {"ExpandAbbreviationWithinWord", true, &S::expandAbbreviationWithinWord,
            &S::setExpandAbbreviationWithinWord},
           {"RemoveTriggerKey", false, &S::removeTriggerKey, &S::setRemoveTriggerKey},
           {"UseTransparentBacgroundForPreview", true, &S::useTransparentBacgroundForPreview,
            &S::setUseTransparentBacgroundForPreview},
           {"RestorePateboardItems", true, &S::restorePateboardItems, &S::setRestorePateboardItems},
           {"ShowQOInMenuBar", true, &S::showAppInMenuBar, &S::setShowAppInMenuBar},
           {"PlaySound", true, &S::playSound, &S::setPlaySound},
           {"ShowNotificationForExpension", true, &S::showNotificationForExpension,
            &S::setShowNotificationForExpension},
           {"ShowFormatInspector", true, &S::showFormatInspector, &S::setShowFormatInspector}}) {
    EXPECT_EQ((settings.*each.get)(), each.defaultValue) << each.key;
    (settings.*each.set)(!each.defaultValue);
    EXPECT_EQ((settings.*each.get)(), !each.defaultValue) << each.key;
    EXPECT_EQ(stored<bool>(each.domain, each.key), !each.defaultValue) << each.key;
  }
}

TEST_F(SettingsControllerTest, KeepsChoicesAsTheirRawValues) {
  auto& settings = start();
  settings.setSearchScopes(kTitleScope | kTextScope);
  settings.setPreviewWindowPosition(PreviewWindowPosition::nextToCursor);
  settings.setDefaultSnippetFormat(SnippetType::code);
  settings.setAbbreviationsTriggerType(AbbreviationTriggerType::lastSymbol);
  settings.setSnippetExpansionSound(SnippetExpansionSound::siFi);
  settings.setPasteBetweenSnippetPartsDelay(Seconds(1.5));
  settings.setRestorePateboardItemsDelay(Seconds(0));
  settings.setDebugEnabledDate(kNow);
  EXPECT_EQ(stored<std::int64_t>(kGroup, "SearchScopes"), 5);
  EXPECT_EQ(stored<std::int64_t>(kStandard, "PreviewWindowPosition"), 2);
  EXPECT_EQ(stored<std::int64_t>(kStandard, "SnippetFormat"), 8);
  EXPECT_EQ(stored<std::int64_t>(kStandard, "AbbreviationsTriggerType"), 1);
  EXPECT_EQ(stored<std::string>(kStandard, "SnippetSound"), "SiFi");
  EXPECT_EQ(stored<double>(kStandard, "PasteBetweenSnippetPartsDelay"), 1.5);
  EXPECT_EQ(stored<double>(kStandard, "RestorePateboardItemsDelay"), 0);
  EXPECT_EQ(stored<Date>(kStandard, "QLDebugEnabledDate"), kNow);
  EXPECT_EQ(settings.snippetExpansionSound(), SnippetExpansionSound::siFi);
  EXPECT_EQ(settings.defaultSnippetFormat(), SnippetType::code);
}

TEST_F(SettingsControllerTest, ConvertsTheFirstOfTheOldDelimiterSwitchesOnce) {
  struct Case {
    bool space, tab, enter;
    std::int64_t delimiters;
  };
  for (const auto& [space, tab, enter, delimiters] : std::vector<Case>{{false, false, false, 1},
                                                                       {true, true, true, 1},
                                                                       {false, true, true, 2},
                                                                       {false, false, true, 4}}) {
    settings_.reset();
    defaults_.removeValue(kStandard, "OldDefaultsHaveBeenCopied");
    defaults_.setValue(kStandard, "AbbreviationKeySpace", space);
    defaults_.setValue(kStandard, "AbbreviationKeyTab", tab);
    defaults_.setValue(kStandard, "AbbreviationKeyReturn", enter);
    defaults_.setValue(kStandard, "SearchIncludesTitle", false);
    auto& settings = start();
    EXPECT_EQ(stored<std::int64_t>(kStandard, "AbbreviationDelimiterKey"), delimiters);
    EXPECT_EQ(stored<bool>(kStandard, "OldDefaultsHaveBeenCopied"), true);
    EXPECT_EQ(settings.searchScopes(), SearchScopes::all());
    settings.setAbbreviationDelimiterKey(DelimiterKeys(8));
    EXPECT_EQ(start().abbreviationDelimiterKey(), DelimiterKeys(8));
  }
}

TEST_F(SettingsControllerTest, ReadsNonsenseAsTheDefault) {
  auto& settings = start();
  const auto readsDefaults = [&] {
    return !settings.abbreviationsEnabled() && settings.playSound() &&
           settings.searchScopes() == SearchScopes::all() && settings.numberOfLaunches() == 0 &&
           settings.firstLaunch() == kNow && settings.debugEnabledDate() == kDistantPast &&
           settings.selectedCategoryUUID() == std::nullopt && settings.customSnippetSound().empty() &&
           settings.previewWindowPosition() == PreviewWindowPosition::centerOfScreen &&
           settings.defaultSnippetFormat() == SnippetType::plainText &&
           settings.snippetsSortOption() == SnippetSortOption::creationDate &&
           settings.abbreviationsTriggerType() == AbbreviationTriggerType::delimiterKey &&
           settings.abbreviationDelimiterKey() == kSpaceDelimiter &&
           settings.snippetExpansionSound() == SnippetExpansionSound::magnet &&
           settings.pasteBetweenSnippetPartsDelay() == Seconds(0.2) &&
           settings.restorePateboardItemsDelay() == Seconds(0.2);
  };
  constexpr auto kInfinity = std::numeric_limits<double>::infinity();
  const auto setEverything = [&](auto skips, const DefaultsValue& value) {
    for (const auto& [domain, key] : kSettingKeys) {
      if (skips(key)) continue;
      defaults_.setValue(domain, key, value);
    }
  };
  const auto isText = [](std::string_view key) {
    return key == "SelectedCategoryUUID" || key == "CustomSnippetSound" || key == "SelectedSnippetUUIDs";
  };
  for (const auto& nonsense :
       {DefaultsValue(std::int64_t{-1}), DefaultsValue(std::numeric_limits<std::int64_t>::min()),
        DefaultsValue(-0.1), DefaultsValue(kInfinity), DefaultsValue(60.5), DefaultsValue(1e300),
        DefaultsValue(std::numeric_limits<double>::quiet_NaN())}) {
    setEverything([](std::string_view) { return false; }, nonsense);
    EXPECT_TRUE(readsDefaults());
    EXPECT_THAT(settings.selectedSnippetUUIDs(), IsEmpty());
  }
  setEverything(isText, "delimiterKey");
  EXPECT_TRUE(readsDefaults());
  defaults_.setValue(kStandard, "SnippetsSortOption", std::int64_t{25});
  EXPECT_EQ(settings.snippetsSortOption(), SnippetSortOption::creationDate);
  defaults_.setValue(kStandard, "SnippetsSortOption", std::int64_t{50});
  EXPECT_EQ(settings.snippetsSortOption(), SnippetSortOption::useCount);
  defaults_.setValue(kStandard, "PasteBetweenSnippetPartsDelay", std::int64_t{5});
  EXPECT_EQ(settings.pasteBetweenSnippetPartsDelay(), Seconds(5));
  defaults_.setValue(kStandard, "AbbreviationDelimiterKey", std::int64_t{1} << 31);
  EXPECT_EQ(settings.abbreviationDelimiterKey(), kSpaceDelimiter);
}

TEST_F(SettingsControllerTest, TellsTheMonitorBeforeSwitchingAutoPasteOn) {
  auto& settings = start();
  std::vector<std::string> told;
  const auto observation = settings.observe([&](Setting setting) {
    if (setting == Setting::abbreviationsEnabled) {
      told.push_back(settings.autoPasteIsEnabled() ? "abbreviations, Auto-Paste on" : "abbreviations");
    }
    if (setting == Setting::autoPasteIsEnabled) told.emplace_back("Auto-Paste");
  });
  settings.setAbbreviationsEnabled(true);
  settings.setAbbreviationsEnabled(false);
  EXPECT_TRUE(settings.autoPasteIsEnabled());
  EXPECT_THAT(told, ElementsAre("abbreviations", "Auto-Paste", "abbreviations, Auto-Paste on"));
}

TEST_F(SettingsControllerTest, LeavesAutoPasteOffWhenTheMonitorCannotStart) {
  trusted_ = false;
  auto& settings = start();
  const auto monitor = settings.observe([&](Setting setting) {
    if (setting == Setting::abbreviationsEnabled && settings.abbreviationsEnabled()) {
      settings.setAbbreviationsEnabled(false);
    }
  });
  settings.setAbbreviationsEnabled(true);
  EXPECT_FALSE(settings.abbreviationsEnabled());
  EXPECT_FALSE(settings.autoPasteIsEnabled());
  EXPECT_THAT(log_, IsEmpty());
}

TEST_F(SettingsControllerTest, RefusesAutoPasteWithoutPermission) {
  auto& settings = start();
  settings.setAutoPasteIsEnabled(true);
  EXPECT_TRUE(settings.autoPasteIsEnabled());
  trusted_ = false;
  settings.validateAutoPaste();
  EXPECT_FALSE(settings.autoPasteIsEnabled());
  settings.setAutoPasteIsEnabled(true);
  EXPECT_FALSE(settings.autoPasteIsEnabled());
  settings.setAutoPasteIsEnabled(false);
  settings.validateAutoPaste();
  const auto* const line = "ERROR #htgrf3 - Unable to invoke CGEvent.tapCreate. Please enable Accessibility.";
  EXPECT_THAT(log_, ElementsAre(line, line));
}

TEST_F(SettingsControllerTest, CountsLaunchesAndEditorClosesTogether) {
  auto& settings = start();
  std::vector<Setting> told;
  const auto observation = settings.observe([&](Setting setting) { told.push_back(setting); });
  settings.setNumberOfEditorCloses(7);
  EXPECT_EQ(settings.numberOfLaunches(), 7);
  EXPECT_THAT(told, ElementsAre(Setting::numberOfLaunches, Setting::numberOfEditorCloses));
}

TEST_F(SettingsControllerTest, RefreshesTheDelimiterStringsWhoeverChangesThem) {
  auto& settings = start();
  EXPECT_THAT(settings.activeAbbreviationKeyStrings(), ElementsAre(u" "));
  settings.setAbbreviationDelimiterKey(kTabDelimiter | kReturnDelimiter | DelimiterKeys(1073741824));
  EXPECT_THAT(settings.activeAbbreviationKeyStrings(), ElementsAre(u"\t", u"\r", u"\\"));
  defaults_.changeFromElsewhere(kStandard, "AbbreviationDelimiterKey", std::int64_t{65536});
  EXPECT_THAT(settings.activeAbbreviationKeyStrings(), ElementsAre(u"."));
  settings.setAbbreviationDelimiterKey(DelimiterKeys(0));
  EXPECT_EQ(stored<std::int64_t>(kStandard, "AbbreviationDelimiterKey"), 1);
  EXPECT_THAT(settings.activeAbbreviationKeyStrings(), ElementsAre(u" "));
}

TEST_F(SettingsControllerTest, HearsOfWhatAnotherProcessSwitchesOn) {
  auto& settings = start();
  std::vector<Setting> told;
  const auto observation = settings.observe([&](Setting setting) { told.push_back(setting); });
  defaults_.changeFromElsewhere(kGroup, "AbbreviationsEnabled", true);
  defaults_.changeFromElsewhere(kStandard, "AbbreviationsEnabled", false);
  defaults_.changeFromElsewhere(kStandard, "SnippetListSearchText", "x");
  EXPECT_THAT(told, ElementsAre(Setting::abbreviationsEnabled));
  EXPECT_TRUE(settings.abbreviationsEnabled());
}

TEST_F(SettingsControllerTest, KeepsListsAsJson) {
  auto& settings = start();
  const std::vector<std::string> uuids{"A-1", "quote \" and \xC3\xA4"};
  settings.setSelectedSnippetUUIDs(uuids);
  EXPECT_EQ(settings.selectedSnippetUUIDs(), uuids);
  settings.setSelectedSnippetUUIDs({"\xFF"});
  EXPECT_EQ(stored<std::string>(kStandard, "SelectedSnippetUUIDs"), "[]");
  for (const auto* broken : {"", "[\"A-1\"", "{}", "[1]"}) {
    log_.clear();
    defaults_.setValue(kStandard, "SelectedSnippetUUIDs", broken);
    EXPECT_THAT(settings.selectedSnippetUUIDs(), IsEmpty()) << broken;
    EXPECT_THAT(log_, ElementsAre(testing::StartsWith("ERROR #4JF47guff: "))) << broken;
  }
}

TEST_F(SettingsControllerTest, DatesTheFirstLaunchByTheUsersRecordIfThereIsOne) {
  EXPECT_EQ(start().firstLaunch(), kNow);
  userCreation_ = kNow - std::chrono::hours(48);
  EXPECT_EQ(start().firstLaunch(), userCreation_);
  settings_->setFirstLaunch(kNow);
  EXPECT_EQ(start().firstLaunch(), kNow);
}

TEST_F(SettingsControllerTest, ShowsTheFormatBarAQuarterOfASecondLater) {
  auto& settings = start();
  std::vector<bool> shown;
  settings.setFormatBarHandler([&](bool on) { shown.push_back(on); });
  settings.setShowFormatInspector(false);
  queue_.advance(Seconds(0.24));
  EXPECT_THAT(shown, IsEmpty());
  queue_.advance(Seconds(0.01));
  EXPECT_THAT(shown, ElementsAre(false));
  settings.setShowFormatInspector(true);
  settings_.reset();
  queue_.settle();
  EXPECT_THAT(shown, ElementsAre(false));
}

TEST_F(SettingsControllerTest, SortsByTheChosenPropertyInTheChosenDirection) {
  auto& settings = start();
  EXPECT_THAT(settings.sortDescriptorsFor(SnippetSortOption::modificationDate),
              ElementsAre(SortDescriptor{&QLSnippet::kModifiedDate, false}));
  settings.setAscendingSnippetSortation(true);
  EXPECT_THAT(settings.sortDescriptorsFor(SnippetSortOption::type),
              ElementsAre(SortDescriptor{&QLSnippet::kFormatted, true}));
}

TEST(SearchScopes, NameTheirMembers) {
  EXPECT_EQ((kTitleScope | kTextScope).description(), "<SearchScopes: name = Title, Text>");
  EXPECT_EQ(kAbbreviationScope.displayString(), u"Abbreviation");
  EXPECT_EQ((kTitleScope | kTextScope).displayString(), u"n/a");
}

TEST(DelimiterKeys, MapToWhatTheyType) {
  EXPECT_EQ(DelimiterKeys(512).string(), u"\"");
  EXPECT_EQ(DelimiterKeys(536870912).string(), u"/");
  EXPECT_EQ(kReturnDelimiter.displayString(), u"Return");
  for (const auto other : {std::int64_t{0}, std::int64_t{3}, std::int64_t{1} << 31, std::int64_t{-1},
                           std::numeric_limits<std::int64_t>::min()}) {
    EXPECT_EQ(DelimiterKeys(other).string(), u"\uF8BF") << other;
  }
}

}  // namespace
}  // namespace quorlo
