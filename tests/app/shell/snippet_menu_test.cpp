#include "app/shell/app_windows.h"
#include "app/shell/shell_world.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

using Rows = std::vector<std::u16string>;

struct SnippetMenuTest : ShellWorld {
  SnippetMenuTest() {
    hello->setTitle(u"Hello");
    hello->setCreationDate(environment.now() + std::chrono::hours(1));
    bye->setTitle(u"Bye");
  }

  void openByHotKey() {
    menu.activateAndPopUpSnippetMenu();
    desktop.queue.advance(Seconds(0.05));
  }

  const MenuItem* settingsItem(MenuCommand command) {
    for (const auto& item : view.items) {
      for (const auto& each : item.submenu) {
        if (each.command == command) return &each;
      }
    }
    return nullptr;
  }

  std::shared_ptr<QLSnippet> hello = add(u"hlo", u"Hello world%cursor%");
  std::shared_ptr<QLSnippet> bye = add(u"", u"Good bye");
};

TEST_F(SnippetMenuTest, OpensAtThePointerAMomentAfterTheHotKeyWithItsFirstResultHighlighted) {
  menu.activateAndPopUpSnippetMenu();
  desktop.queue.advance(Seconds(0.049));
  EXPECT_FALSE(view.isOpen);
  desktop.queue.advance(Seconds(0.001));
  EXPECT_EQ(view.place, MenuPlace::pointer);
  EXPECT_EQ(view.rows(), (Rows{u"?", u"[All Snippets]", u"Hello", u"Bye", u"-", u"Snippet Editor",
                               u"Settings", u"Quit Quorlo"}));
  EXPECT_EQ(view.highlighted->title, u"Hello");
  EXPECT_EQ(focus.activeOwnWindow, view.nativeWindow());

  menu.activateAndPopUpSnippetMenu();
  desktop.queue.settle();
  EXPECT_FALSE(view.isOpen);
  EXPECT_EQ(focus.activeOwnWindow, 0u);
}

TEST_F(SnippetMenuTest, FollowsTheSearchFieldTheSortingAndTheScopes) {
  statusItem.click();
  EXPECT_EQ(view.rows(), (Rows{u"?", u"Snippet Editor", u"Settings", u"Quit Quorlo", u"-", u"[All Snippets]",
                               u"Hello", u"Bye"}));
  EXPECT_EQ(view.highlighted, nullptr);

  view.type(u"good");
  EXPECT_EQ(view.highlighted->title, u"Bye");
  settings.setSearchScopes(kTitleScope);
  EXPECT_EQ(view.items.back().kind, MenuItem::Kind::noResults);
  EXPECT_EQ(view.items.back().tag, -1);
  view.type(u"");
  settings.setSnippetsSortOption(SnippetSortOption::title);
  settings.setAscendingSnippetSortation(true);
  EXPECT_EQ(view.highlighted->title, u"Bye");
}

TEST_F(SnippetMenuTest, ChoosesIntoTheTargetOrTheEditor) {
  struct Case {
    ModifierFlags flags;
    bool editorIsVisible;
    bool isPasted;
  };
  const Case cases[] = {{0, false, true},
                        {modifier::kShift, false, true},
                        {modifier::kOption, false, false},
                        {modifier::kCommand, false, false},
                        {0, true, false}};
  for (const auto& each : cases) {
    desktop.front().text.clear();
    desktop.front().caret = 0;
    navigation.setSelectedSnippets({});
    windows.visible.clear();
    ownApplication.openWindow();
    ownApplication.unhide();
    ownApplication.setActivationPolicy(ActivationPolicy::regular);
    if (each.editorIsVisible) windows.openWindow(kSnippetEditorWindow);

    openByHotKey();
    view.pressReturn(each.flags);
    EXPECT_FALSE(view.isOpen);
    EXPECT_EQ(ownApplication.hasVisibleWindows(), !each.isPasted);
    EXPECT_EQ(ownApplication.activationPolicy() == ActivationPolicy::accessory, each.isPasted);
    desktop.queue.settle();
    EXPECT_EQ(desktop.text(), each.isPasted ? u"Hello world" : u"");
    EXPECT_TRUE(ownApplication.hasVisibleWindows());
    EXPECT_EQ(windows.isWindowVisible(kSnippetEditorWindow), !each.isPasted);
    EXPECT_EQ(navigation.selectedSnippets().size(), each.isPasted ? 0u : 1u);
    EXPECT_FALSE(desktop.holdsKeys());
  }
  EXPECT_EQ(hello->useCount(), 2);
}

TEST_F(SnippetMenuTest, CopiesWithoutPastingAndBlinks) {
  openByHotKey();
  view.events.copySnippet(hello->objectID());
  EXPECT_EQ(statusItem.image, StatusImage::hollowed);
  desktop.queue.advance(Seconds(0.2));
  EXPECT_EQ(statusItem.image, StatusImage::regular);
  EXPECT_EQ(desktop.pasteboard.text(), "Hello world");
  EXPECT_EQ(desktop.text(), u"");
  EXPECT_EQ(hello->useCount(), 0);

  desktop.type(u"hlo ");
  EXPECT_EQ(statusItem.image, StatusImage::hollowed);
}

// The window that the menu was opened from may close while it is open.
TEST_F(SnippetMenuTest, LeavesTheSnippetOnThePasteboardWhereTheTargetIsGone) {
  openByHotKey();
  focus.targetIsThere = false;
  ownApplication.openWindow();
  view.pressReturn();
  desktop.queue.settle();
  EXPECT_TRUE(ownApplication.hasVisibleWindows());
  EXPECT_EQ(desktop.text(), u"");
  EXPECT_EQ(desktop.pasteboard.text(), "Hello world");
  EXPECT_FALSE(desktop.holdsKeys());
}

TEST_F(SnippetMenuTest, IgnoresASnippetThatWasDeletedWhileTheMenuIsOpen) {
  openByHotKey();
  context.deleteObject(*hello);
  view.pressReturn();
  EXPECT_TRUE(view.isOpen);
  view.events.copySnippet(ObjectID{Entity::category, 1});
  desktop.queue.settle();
  EXPECT_EQ(desktop.text(), u"");
}

TEST_F(SnippetMenuTest, IsLimitedToAFolderUntilItCloses) {
  const auto folder = addFolder(ExpansionBehavior::AllApplications, *bye);
  folder->setTitle(u"Letters");
  for (const bool closesByItself : {true, false}) {
    menu.activateAndPopUpSnippetMenu(folder);
    desktop.queue.advance(Seconds(0.05));
    EXPECT_EQ(view.rows()[1], u"[Letters]");
    EXPECT_EQ(view.highlighted->title, u"Bye");
    if (closesByItself) {
      view.clickElsewhere();
      statusItem.click();  // the same click, perhaps
      EXPECT_FALSE(view.isOpen);
      desktop.queue.advance(Seconds(0.3));
    } else {
      view.events.cancel();
    }
    EXPECT_EQ(menu.filteredCategory(), nullptr);
    statusItem.click();
    EXPECT_EQ(view.rows().back(), u"Bye");
    EXPECT_EQ(view.rows().size(), 9u);
    menu.close();
  }
}

TEST_F(SnippetMenuTest, SwitchesSettingsAndShowsTheirState) {
  openByHotKey();
  EXPECT_TRUE(settingsItem(MenuCommand::toggleAutoPasteStatus)->hasCheckMark);
  EXPECT_FALSE(settingsItem(MenuCommand::toggleLaunchAtLoginStatus)->hasCheckMark);
  view.events.perform(MenuCommand::toggleAutoPasteStatus);
  view.events.perform(MenuCommand::toggleLaunchAtLoginStatus);
  view.events.perform(MenuCommand::toggleAbbreviationsStatus);
  EXPECT_FALSE(view.isOpen);
  EXPECT_FALSE(settings.autoPasteIsEnabled());
  EXPECT_FALSE(settings.abbreviationsEnabled());
  EXPECT_TRUE(launchAtLogin.isEnabled());

  openByHotKey();
  EXPECT_FALSE(settingsItem(MenuCommand::toggleAutoPasteStatus)->hasCheckMark);
  EXPECT_TRUE(settingsItem(MenuCommand::toggleLaunchAtLoginStatus)->hasCheckMark);
}

TEST_F(SnippetMenuTest, CallsAHiddenStatusItemBack) {
  EXPECT_TRUE(statusItem.visible);
  settings.setShowAppInMenuBar(false);
  EXPECT_FALSE(statusItem.visible);
  openByHotKey();
  ASSERT_NE(settingsItem(MenuCommand::toggleShowInMenu), nullptr);
  view.events.perform(MenuCommand::toggleShowInMenu);
  EXPECT_TRUE(statusItem.visible);
  openByHotKey();
  EXPECT_EQ(settingsItem(MenuCommand::toggleShowInMenu), nullptr);
}

TEST_F(SnippetMenuTest, OpensWindowsAndQuitsFromTheMenuAndTheStatusItem) {
  windows.sheetIsOpen = true;
  openByHotKey();
  view.events.perform(MenuCommand::showSettingsWindow);
  EXPECT_TRUE(windows.isWindowVisible(kSettingsWindow));
  EXPECT_FALSE(view.isOpen);
  const auto line = std::ranges::find(statusItem.menu, u"Quit Quorlo", &StatusMenuItem::title);
  ASSERT_NE(line, statusItem.menu.end());
  line->chosen();
  EXPECT_FALSE(windows.sheetIsOpen);
  EXPECT_EQ(terminations, 1);
}

}  // namespace
}  // namespace quorlo
