#include "app/shell/app_delegate.h"

#include "app/shell/app_setup.h"
#include "app/shell/debug_mode.h"
#include "app/shell/quorlo_app.h"
#include "app/shell/shell_world.h"
#include "base/log.h"
#include "fakes/fake_hot_key_center.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <iterator>

namespace quorlo {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using Reply = AppDelegate::TerminateReply;

constexpr Shortcut kHotKey{key::kSpace, modifier::kControl | modifier::kOption};
constexpr Shortcut kOtherHotKey{key::kSpace, modifier::kCommand | modifier::kOption};

struct AppDelegateTest : ShellWorld {
  AppDelegateTest() { context.save().ok(); }

  bool flag(const char* name) {
    const auto* value = defaults.value(DefaultsDomain::standard, name);
    return value && *value == DefaultsValue(true);
  }

  void switchDebugModeOn(std::chrono::hours ago) {
    settings.setDebugModeEnabled(true);
    settings.setDebugEnabledDate(environment.now() - ago);
  }

  std::vector<std::string> events;  // and the lines of the log
  Subscription redirection =
      redirectLog([this](LogLevel, std::string_view line) { events.emplace_back(line); });
  FakeHotKeyCenter hotKeys;
  AppSetup setup{{persistence, defaults, settings, navigation, [this]() -> Status {
                    events.emplace_back("store prepared");
                    return {};
                  }}};
  bool coreDumpsAreAllowed = false;
  DebugMode debugMode{{settings, [this] { return environment.now(); }, "/data",
                       [](const auto&) { return Subscription(); },
                       [this](bool allowed) { coreDumpsAreAllowed = allowed; }}};
  int quits = 0;
  int importStops = 0;
  AppDelegate delegate{{.queue = desktop.queue,
                        .defaults = defaults,
                        .settings = settings,
                        .persistence = persistence,
                        .accessibility = accessibility,
                        .launchAtLogin = launchAtLogin,
                        .hotKeys = hotKeys,
                        .alerts = alerts,
                        .windows = windows,
                        .navigation = navigation,
                        .setup = setup,
                        .debugMode = debugMode,
                        .systemMajorVersion = 6,
                        .systemMinorVersion = 1,
                        .createStatusItemAndMenu = [this]() -> QLSnippetStatusMenuViewController& {
                          events.emplace_back("menu");
                          return menu;
                        },
                        .menuHotKeyRefused = [this](const Error&) { events.emplace_back("hot key refused"); },
                        .startCrashReporter = [this] { events.emplace_back("crash reporter"); },
                        .createAbbreviationsMonitor = [this] { events.emplace_back("monitor"); },
                        .stopImport = [this] { ++importStops; },
                        .quit = [this] { ++quits; },
                        .giveUp = [this](const Error& error) { events.push_back(error.message); }}};
};

TEST_F(AppDelegateTest, StartsInOrderAndRepairsAndPurgesLater) {
  add(u"", u"old")->setDeletionDate(environment.now() - std::chrono::hours(24 * 31));
  defaults.setValue(DefaultsDomain::standard, "SnippetListSearchText", std::string("left over"));
  defaults.setValue(DefaultsDomain::standard, "LaunchAtLogin", true);
  switchDebugModeOn(std::chrono::hours(25));
  desktop.queue.settle();
  desktop.grantTrust(false);
  events.clear();

  delegate.applicationDidFinishLaunching();
  EXPECT_THAT(
      events,
      ElementsAre("store prepared", "menu",
                  HasSubstr("Automatically deactivating Debug mode after 24 hours. passedTime: -90000"),
                  "Running 6.1", "crash reporter", "monitor", "Removing eventTap"));
  EXPECT_EQ(defaults.value(DefaultsDomain::standard, "SnippetListSearchText"), nullptr);
  EXPECT_TRUE(windows.isWindowVisible(kWelcomeWindow));
  EXPECT_FALSE(settings.abbreviationsEnabled());
  EXPECT_TRUE(alerts.shown.empty());
  EXPECT_EQ(settings.numberOfLaunches(), 1);

  desktop.queue.advance(Seconds(0.249));
  EXPECT_TRUE(flag("HasMigratedTo308"));
  EXPECT_FALSE(flag("HasMigratedToVersion23"));
  EXPECT_FALSE(launchAtLogin.isEnabled());
  desktop.queue.advance(Seconds(0.002));
  EXPECT_TRUE(flag("HasMigratedToVersion23"));
  EXPECT_TRUE(flag("HasMigratedToVersion300g"));
  EXPECT_TRUE(launchAtLogin.isEnabled());
  EXPECT_TRUE(persistence.hasRepaired("HasMigratedToVersion300g"));
  EXPECT_FALSE(context.hasChanges());

  EXPECT_EQ(persistence.trashedSnippets().size(), 1u);
  desktop.queue.advance(Seconds(9.7));
  EXPECT_EQ(persistence.trashedSnippets().size(), 1u);
  desktop.queue.advance(Seconds(0.1));
  EXPECT_TRUE(persistence.trashedSnippets().empty());

  // The next start finds it done.
  const auto snippet = add(u"", u"new");
  windows.visible.clear();
  settings.setWelcomeViewHasBeenShown(true);
  switchDebugModeOn(std::chrono::hours(23));
  delegate.applicationDidFinishLaunching();
  desktop.queue.settle();
  EXPECT_EQ(snippet->category(), nullptr);
  EXPECT_TRUE(windows.visible.empty());
  EXPECT_TRUE(settings.debugModeEnabled());
}

// On another device, for example: the settings do not know of it.
TEST_F(AppDelegateTest, RepairsNothingInALibraryThatSaysThatItIsDone) {
  const auto snippet = add(u"", u"a derived title");
  snippet->setTitle(u"a derived title");
  for (const auto* each : {"HasMigratedTo308", "HasMigratedToVersion23", "HasMigratedToVersion300g"}) {
    persistence.noteRepaired(each);
  }
  delegate.applicationDidFinishLaunching();
  desktop.queue.settle();
  EXPECT_FALSE(snippet->titleIsCustom());
  EXPECT_EQ(snippet->category(), nullptr);
  EXPECT_TRUE(flag("HasMigratedTo308"));
}

TEST_F(AppDelegateTest, GivesUpWithTheReasonWhenTheRepairsOfTheStartCannotBeSaved) {
  commitResult = Error{"another program holds it."};
  delegate.applicationDidFinishLaunching();
  desktop.queue.advance(Seconds(0.3));
  EXPECT_THAT(events, testing::Contains("another program holds it."));
  delegate.applicationWillTerminate();
  EXPECT_TRUE(commits.empty());
}

TEST_F(AppDelegateTest, LogsToItsFileFromTheMomentDebugModeIsSwitchedOn) {
  settings.setDebugModeEnabled(true);
  EXPECT_THAT(events, testing::Contains("The Quorlo log can now be found here: /data/Quorlo.log"));
  EXPECT_EQ(settings.debugEnabledDate(), environment.now());
  EXPECT_TRUE(coreDumpsAreAllowed);
  settings.setDebugModeEnabled(false);
  EXPECT_FALSE(coreDumpsAreAllowed);

  const auto file = std::filesystem::path(testing::TempDir()) / "quorlo-log-test" / "Quorlo.log";
  std::filesystem::remove_all(file.parent_path());
  for (const auto* line : {"first\n", "second\n"}) {
    const auto reopened = reopenStandardError(file);
    std::fputs(line, stderr);
  }
  std::ifstream in(file);
  EXPECT_EQ(std::string(std::istreambuf_iterator(in), {}), "first\nsecond\n");
}

TEST_F(AppDelegateTest, AsksBeforeChangesAreLost) {
  struct Case {
    bool canCommitEditing;
    bool hasChanges;
    bool canSave;
    std::deque<std::size_t> choices;
    bool savesWhenTriedAgain;
    Reply reply;
    std::size_t alerts;
  };
  const Case cases[] = {
      {false, true, true, {}, false, Reply::terminateCancel, 0},
      {true, false, false, {}, false, Reply::terminateNow, 0},
      {true, true, true, {}, false, Reply::terminateNow, 0},
      {true, true, false, {1, 0}, false, Reply::terminateNow, 2},
      {true, true, false, {1, 1}, false, Reply::terminateCancel, 2},
      {true, true, false, {1}, false, Reply::terminateCancel, 2},
      {true, true, false, {0, 0}, false, Reply::terminateNow, 2},
      {true, true, false, {0}, true, Reply::terminateCancel, 1},
  };
  for (const auto& each : cases) {
    commitResult = {};
    ASSERT_TRUE(context.save().ok());
    alerts.shown.clear();
    alerts.choices = each.choices;
    alerts.whileOpen = [&] {
      EXPECT_EQ(delegate.applicationShouldTerminate(), Reply::terminateCancel);
      if (each.savesWhenTriedAgain) commitResult = {};
    };
    windows.canCommitEditing = each.canCommitEditing;
    if (each.hasChanges) add(u"", u"unsaved");
    if (!each.canSave) commitResult = Error{"disk full"};

    importStops = 0;
    EXPECT_EQ(delegate.applicationShouldTerminate(), each.reply);
    EXPECT_EQ(importStops, each.canCommitEditing ? 1 : 0);
    EXPECT_EQ(alerts.shown.size(), each.alerts);
    if (each.alerts == 2) {
      EXPECT_EQ(alerts.shown.back().message, u"Could not save changes while quitting. Quit anyway?");
      EXPECT_EQ(alerts.shown.back().buttons, (std::vector<std::u16string>{u"Quit anyway", u"Cancel"}));
    }
  }
  EXPECT_EQ(events, std::vector<std::string>{"AppDelegate unable to commit editing to terminate"});
}

TEST_F(AppDelegateTest, KeepsTheSelectionFromOneRunToTheNext) {
  const auto first = add(u"", u"first");
  const auto second = add(u"", u"second");
  const auto folder = addFolder(ExpansionBehavior::AllApplications, *first);
  navigation.setSelectedCategory(folder);
  navigation.setSelectedSnippets({first, second});
  delegate.terminate();
  EXPECT_EQ(quits, 1);
  EXPECT_FALSE(context.hasChanges());

  navigation.setSelectedCategory(nullptr);
  navigation.setSelectedSnippets({});
  context.deleteObject(*second);
  delegate.applicationDidFinishLaunching();
  EXPECT_EQ(navigation.selectedCategory(), folder);
  EXPECT_EQ(navigation.selectedSnippets(), std::vector{first});
}

TEST_F(AppDelegateTest, OpensTheMenuWhenStartedAgainUnlessTheEditorIsThere) {
  delegate.applicationDidFinishLaunching();
  navigation.showSnippetEditor();
  EXPECT_TRUE(delegate.applicationShouldHandleReopen());
  EXPECT_FALSE(view.isOpen);
  windows.visible.clear();
  EXPECT_TRUE(delegate.applicationShouldHandleReopen());
  EXPECT_TRUE(view.isOpen);
}

TEST_F(AppDelegateTest, HandsOpenedFilesToTheImportInOneCall) {
  std::vector<std::vector<std::filesystem::path>> opened;
  persistence.setFileOpener([&opened](const auto& files) { opened.push_back(files); });
  delegate.open({"a.csv", "b.quorlo"});
  EXPECT_THAT(opened, ElementsAre(ElementsAre("a.csv", "b.quorlo")));
}

TEST_F(AppDelegateTest, FollowsTheHotKeysOfFoldersAndMenu) {
  const auto folder = addFolder(ExpansionBehavior::AllApplications, *add(u"", u"inside"));
  folder->setShortcutValue(kHotKey);
  delegate.applicationDidFinishLaunching();
  EXPECT_TRUE(hotKeys.press(kHotKey));
  desktop.queue.advance(Seconds(0.05));
  EXPECT_EQ(menu.filteredCategory(), folder);
  menu.close();

  folder->setShortcutValue(kOtherHotKey);
  desktop.queue.runDue();
  EXPECT_FALSE(hotKeys.press(kHotKey));
  EXPECT_TRUE(hotKeys.press(kOtherHotKey));
  desktop.queue.advance(Seconds(0.05));
  menu.close();
  context.deleteObject(*folder);
  desktop.queue.runDue();
  EXPECT_FALSE(hotKeys.press(kOtherHotKey));

  delegate.setMenuShortcut(kHotKey);
  EXPECT_EQ(delegate.menuShortcut(), kHotKey);
  EXPECT_TRUE(hotKeys.press(kHotKey));
  desktop.queue.advance(Seconds(0.05));
  EXPECT_TRUE(view.isOpen);
  defaults.changeFromElsewhere(DefaultsDomain::standard, "SnippetMenuViewShortcut",
                               std::string(R"({"keyCode":49,"modifierFlags":1572864})"));
  EXPECT_FALSE(hotKeys.press(kHotKey));
  EXPECT_TRUE(hotKeys.press(kOtherHotKey));
  hotKeys.takenByOthers.insert(kHotKey);
  events.clear();
  delegate.setMenuShortcut(kHotKey);
  EXPECT_THAT(events, Contains("hot key refused"));
  for (const auto* damaged : {"", "[]", R"({"keyCode":-1,"modifierFlags":1})", R"({"keyCode":70000})"}) {
    defaults.changeFromElsewhere(DefaultsDomain::standard, "SnippetMenuViewShortcut", std::string(damaged));
    EXPECT_EQ(delegate.menuShortcut(), std::nullopt);
  }
}

TEST(QuorloAppTest, SaysOfABetaWhatItIs) {
  EXPECT_EQ(QuorloApp("1.2").toolTip(), u"Quorlo");
  EXPECT_EQ(QuorloApp("1.2 Beta 3").toolTip(), u"Quorlo BETA (Version 1.2 Beta 3)");
}

}  // namespace
}  // namespace quorlo
