#include "app/settings/settings_controller.h"
#include "base/log.h"
#include "fakes/fake_main_queue.h"
#include "fakes/fake_user_defaults.h"
#include "store/records/snippet_type.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <tuple>
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

  DefaultsValue stored(std::string_view key, DefaultsDomain domain = kStandard) const {
    return *defaults_.value(domain, key);
  }

  FakeUserDefaults defaults_;
  FakeMainQueue queue_;
  std::optional<Date> userCreation_;
  bool trusted_ = true;
  std::optional<SettingsController> settings_;
  std::vector<std::string> log_;
  Subscription logged_ = redirectLog([this](LogLevel, std::string_view line) { log_.emplace_back(line); });
};

TEST_F(SettingsControllerTest, ConvertsTheFirstOfTheOldDelimiterSwitchesOnce) {
  using Switches = std::tuple<bool, bool, bool>;  // space, tab and return
  const std::pair<Switches, std::int64_t> cases[] = {{{false, false, false}, 1},
                                                     {{true, true, true}, 1},
                                                     {{false, true, true}, 2},
                                                     {{false, false, true}, 4}};
  for (const auto& [switches, delimiters] : cases) {
    defaults_.removeValue(kStandard, "OldDefaultsHaveBeenCopied");
    defaults_.setValue(kStandard, "AbbreviationKeySpace", std::get<0>(switches));
    defaults_.setValue(kStandard, "AbbreviationKeyTab", std::get<1>(switches));
    defaults_.setValue(kStandard, "AbbreviationKeyReturn", std::get<2>(switches));
    auto& settings = start();
    EXPECT_EQ(stored("AbbreviationDelimiterKey"), DefaultsValue(delimiters));
    settings.setAbbreviationDelimiterKey(DelimiterKeys(8));
    EXPECT_EQ(start().abbreviationDelimiterKey(), DelimiterKeys(8));
  }
}

TEST_F(SettingsControllerTest, ReadsNonsenseAsTheDefault) {
  auto& settings = start();
  for (const auto& nonsense :
       {DefaultsValue(std::numeric_limits<std::int64_t>::min()), DefaultsValue(-0.1), DefaultsValue(60.5),
        DefaultsValue(std::numeric_limits<double>::infinity()),
        DefaultsValue(std::numeric_limits<double>::quiet_NaN()), DefaultsValue("Klaxon")}) {
    for (const auto& each : settingDescriptions()) defaults_.setValue(each.domain, each.key, nonsense);
    EXPECT_FALSE(settings.abbreviationsEnabled());
    EXPECT_EQ(settings.numberOfLaunches(), 0);
    EXPECT_EQ(settings.firstLaunch(), kNow);
    EXPECT_EQ(settings.defaultSnippetFormat(), SnippetType::plainText);
    EXPECT_EQ(settings.abbreviationDelimiterKey(), kSpaceDelimiter);
    EXPECT_EQ(settings.snippetExpansionSound(), SnippetExpansionSound::magnet);
    EXPECT_EQ(settings.pasteBetweenSnippetPartsDelay(), Seconds(0.2));
  }
  for (const auto unknown : {std::int64_t{1} << 31, std::int64_t{-1}}) {
    defaults_.setValue(kStandard, "AbbreviationDelimiterKey", unknown);
    EXPECT_EQ(settings.abbreviationDelimiterKey(), kSpaceDelimiter) << unknown;
    EXPECT_EQ(DelimiterKeys(unknown).string(), u"\uF8BF") << unknown;
  }
}

TEST_F(SettingsControllerTest, TellsTheMonitorBeforeSwitchingAutoPasteOn) {
  auto& settings = start();
  bool monitorStarts = false;
  bool autoPasteCameFirst = false;
  const auto monitor = settings.observe([&](Setting setting) {
    if (setting != Setting::abbreviationsEnabled || !settings.abbreviationsEnabled()) return;
    autoPasteCameFirst = settings.autoPasteIsEnabled();
    if (!monitorStarts) settings.setAbbreviationsEnabled(false);
  });
  settings.setAbbreviationsEnabled(true);
  EXPECT_FALSE(settings.abbreviationsEnabled());
  EXPECT_FALSE(settings.autoPasteIsEnabled());
  monitorStarts = true;
  settings.setAbbreviationsEnabled(true);
  EXPECT_FALSE(autoPasteCameFirst);
  settings.setAbbreviationsEnabled(false);
  EXPECT_TRUE(settings.autoPasteIsEnabled());
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
  const auto* const line = "ERROR #htgrf3 - Unable to invoke CGEvent.tapCreate. Please enable Accessibility.";
  EXPECT_THAT(log_, ElementsAre(line, line));
}

TEST_F(SettingsControllerTest, RefreshesTheDelimiterStringsWhoeverChangesThem) {
  auto& settings = start();
  settings.setAbbreviationDelimiterKey(kTabDelimiter | kReturnDelimiter | DelimiterKeys(1073741824));
  EXPECT_THAT(settings.activeAbbreviationKeyStrings(), ElementsAre(u"\t", u"\r", u"\\"));
  defaults_.changeFromElsewhere(kStandard, "AbbreviationDelimiterKey", std::int64_t{65536});
  EXPECT_THAT(settings.activeAbbreviationKeyStrings(), ElementsAre(u"."));
  settings.setAbbreviationDelimiterKey(DelimiterKeys(0));
  EXPECT_EQ(stored("AbbreviationDelimiterKey"), DefaultsValue(std::int64_t{1}));
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
  EXPECT_EQ(stored("SelectedSnippetUUIDs"), DefaultsValue("[]"));
  for (const auto* broken : {"[\"A-1\"", "{}", "[1]"}) {
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
}

}  // namespace
}  // namespace quorlo
