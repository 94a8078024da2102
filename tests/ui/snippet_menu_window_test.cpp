#include "ui/menu/snippet_menu_window.h"
#include "fakes/fake_desktop.h"
#include "ui/event_loop.h"
#include "ui/menu/menu_list.h"
#include "ui/menu/menu_placement.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QLineEdit>
#include <QScreen>
#include <QTest>

#include <string>
#include <vector>

namespace quorlo {
namespace {

SnippetMenuEntry entry(std::uint64_t number, const std::u16string& title) {
  return {title, SnippetType::code, u"first\n\tsecond", u"ab", {Entity::snippet, number}};
}

// The menu and somebody at its keyboard and mouse. What happens is written down: "choose 1 0x100000".
struct SnippetMenuWindowTest : testing::Test {
  SnippetMenuWindowTest() {
    window.setEvents(
        {[this](const std::u16string& text) {
           note("search " + QString::fromStdU16String(text));
           if (text == u"one") show({entry(2, u"One")});
           if (text == u"none") show({});
         },
         [this](ObjectID id, ModifierFlags flags) {
           note(QStringLiteral("choose %1 %2").arg(id.number).arg(flags, 0, 16));
         },
         [this](ObjectID id) { note(QStringLiteral("copy %1").arg(id.number)); },
         [this](MenuCommand command) { note(QStringLiteral("perform %1").arg(static_cast<int>(command))); },
         [this] { note(QStringLiteral("cancel")); }, [this] { note(QStringLiteral("gone")); }});
  }

  void open(MenuPlace at = MenuPlace::pointer) {
    place = at;
    window.open(place, itemsWith({entry(1, u"First"), entry(2, u"One"), entry(3, u"Last")}));
    window.highlightFirstResult();
    menu = QWidget::find(window.nativeWindow());
    ASSERT_TRUE(runEventLoopUntil([&] { return menu->isVisible(); }));
    lists = menu->findChildren<MenuList*>();
  }
  void show(const std::vector<SnippetMenuEntry>& snippets) {
    window.setItems(itemsWith(snippets));
    window.highlightFirstResult();
  }
  std::vector<MenuItem> itemsWith(const std::vector<SnippetMenuEntry>& snippets) const {
    std::vector<SnippetMenuGroup> groups;
    for (const auto& snippet : snippets) groups.push_back({u"Folder", {snippet}});
    return menuItems(place, fixedMenuItems({.autoPaste = true}), snippetMenuItems(groups));
  }
  void note(const QString& what) { notes << what; }
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(menu->focusWidget(), key, modifiers);
  }
  void type(const char* text) { QTest::keyClicks(menu->focusWidget(), QString::fromUtf8(text)); }
  QStringList happened() { return std::exchange(notes, {}); }
  MenuList* listWith(MenuItem::Kind kind, int& row) const {
    for (auto* const list : lists) {
      for (row = 0; row < list->rowCount(); ++row) {
        if (list->item(row).kind == kind) return list;
      }
    }
    return nullptr;
  }
  QString highlighted() const {
    QStringList titles;
    for (const auto* const list : lists) {
      const int row = list->highlightedRow();
      if (row >= 0) titles << QString::fromStdU16String(list->item(row).title);
    }
    return titles.join(u'+');
  }

  FakeDesktop mouse;
  SnippetMenuWindow window{mouse};
  MenuPlace place = MenuPlace::pointer;
  QWidget* menu = nullptr;
  QList<MenuList*> lists;
  QStringList notes;
};

TEST_F(SnippetMenuWindowTest, FindsMovesAndChoosesByTheKeyboardAlone) {
  open();
  EXPECT_EQ(highlighted(), QStringLiteral("First"));
  type("one");
  EXPECT_EQ(highlighted(), QStringLiteral("One"));
  EXPECT_EQ(happened().last(), QStringLiteral("search one"));
  press(Qt::Key_Return);
  press(Qt::Key_Return, Qt::ControlModifier);
  press(Qt::Key_Enter, Qt::AltModifier | Qt::KeypadModifier);
  press(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(happened(), QStringList({"choose 2 0", "choose 2 100000", "choose 2 80000", "copy 2"}));

  type("x");
  type("none");
  menu->findChild<QLineEdit*>()->setText(QStringLiteral("none"));
  EXPECT_EQ(highlighted(), QString());
  happened();
  press(Qt::Key_Return);
  EXPECT_EQ(happened(), QStringList()) << "there is nothing to choose";
  press(Qt::Key_Escape);
  EXPECT_EQ(happened(), QStringList({"search "}));
  press(Qt::Key_Escape);
  EXPECT_EQ(happened(), QStringList({"cancel"}));
}

TEST_F(SnippetMenuWindowTest, GoesRoundOverResultsAndCommandsAndLeavesOutHeaders) {
  open();
  const auto step = [&](Qt::Key key) {
    press(key);
    return highlighted();
  };
  EXPECT_EQ(step(Qt::Key_Down), QStringLiteral("One"));
  EXPECT_EQ(step(Qt::Key_End), QStringLiteral("Last"));
  EXPECT_EQ(step(Qt::Key_Tab), QStringLiteral("Snippet Editor"));
  EXPECT_EQ(step(Qt::Key_PageDown), QStringLiteral("Quit Quorlo"));
  EXPECT_EQ(step(Qt::Key_Down), QStringLiteral("First"));
  EXPECT_EQ(step(Qt::Key_Up), QStringLiteral("Quit Quorlo"));
  press(Qt::Key_Return);
  EXPECT_EQ(happened(), QStringList({"perform 2"}));
  EXPECT_EQ(step(Qt::Key_Home), QStringLiteral("First"));
  window.close();

  open(MenuPlace::statusItem);
  EXPECT_EQ(highlighted(), QStringLiteral("First"));
  EXPECT_EQ(step(Qt::Key_Up), QStringLiteral("Quit Quorlo")) << "the commands stand above the results";
}

TEST_F(SnippetMenuWindowTest, SwitchesSettingsInTheSubmenu) {
  open();
  for (int i = 0; i < 4; ++i) press(Qt::Key_Down);
  ASSERT_EQ(highlighted(), QStringLiteral("Settings"));
  press(Qt::Key_Return);
  EXPECT_EQ(happened(), QStringList({"perform 1"})) << "the row itself opens the settings";
  press(Qt::Key_Right);
  EXPECT_EQ(highlighted(), QStringLiteral("Auto-Paste"));
  press(Qt::Key_Down);
  press(Qt::Key_Return);
  EXPECT_EQ(happened(), QStringList({"perform 4"}));
  window.setItems(itemsWith({entry(1, u"First")}));  // with the new check mark
  EXPECT_EQ(highlighted(), QStringLiteral("Abbreviations"));
  press(Qt::Key_Left);
  EXPECT_EQ(highlighted(), QStringLiteral("Settings"));
  press(Qt::Key_Right);
  press(Qt::Key_Escape);
  EXPECT_EQ(highlighted(), QStringLiteral("Settings"));
  EXPECT_EQ(happened(), QStringList());
}

TEST_F(SnippetMenuWindowTest, FollowsThePointerOnceItMoves) {
  open();
  int row = 0;
  auto* const list = listWith(MenuItem::Kind::snippet, row);
  const auto centre = [&](int of) { return list->viewport()->mapFromGlobal(list->placeOfRow(of).center()); };
  EXPECT_EQ(highlighted(), QStringLiteral("First")) << "wherever the pointer is";
  QTest::mouseMove(list->viewport(), centre(row + 2));
  EXPECT_EQ(highlighted(), QStringLiteral("One"));
  QTest::mouseMove(list->viewport(), centre(row + 1));
  EXPECT_EQ(highlighted(), QStringLiteral("One")) << "a header is passed over";
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, centre(row + 1));
  QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier, centre(row + 4));
  EXPECT_EQ(happened().first().section(' ', 0, 1), QStringLiteral("choose 3"));
}

TEST_F(SnippetMenuWindowTest, IsGoneWhenTheUserClicksElsewhere) {
  open();
  QCursor::setPos(menu->geometry().center());
  mouse.clickMouse();
  EXPECT_EQ(happened(), QStringList());
  QCursor::setPos(menu->geometry().topLeft() - QPoint(2, 2));
  mouse.clickMouse();
  EXPECT_EQ(happened(), QStringList({"gone"}));
  EXPECT_FALSE(menu->isVisible());
  mouse.clickMouse();
  EXPECT_EQ(happened(), QStringList());

  open(MenuPlace::statusItem);
  QCursor::setPos(menu->geometry().topLeft() - QPoint(2, 2));
  mouse.clickMouse();
  EXPECT_EQ(happened(), QStringList()) << "the click that opened it, seen by another way";
  ASSERT_TRUE(runEventLoopUntil([&] {
    mouse.clickMouse();
    return !notes.isEmpty();
  }));
}

TEST_F(SnippetMenuWindowTest, IsGoneWhenAnotherWindowTakesTheFocus) {
  open();
  ASSERT_TRUE(runEventLoopUntil([&] { return menu->isActiveWindow(); }));
  QWidget other;
  other.show();
  other.activateWindow();
  ASSERT_TRUE(runEventLoopUntil([&] { return !menu->isVisible(); }));
  EXPECT_EQ(happened(), QStringList({"gone"}));
}

TEST_F(SnippetMenuWindowTest, TellsAScreenReaderWhatItShows) {
  open();
  int row = 0;
  auto* const list = QAccessible::queryAccessibleInterface(listWith(MenuItem::Kind::snippet, row));
  ASSERT_TRUE(list && list->child(row));
  EXPECT_EQ(list->text(QAccessible::Name), QStringLiteral("Results"));
  EXPECT_EQ(list->child(row)->text(QAccessible::Name), QStringLiteral("First, Code, ab, first second"));
  EXPECT_TRUE(list->child(row)->state().selected);
  EXPECT_EQ(menu->focusWidget()->accessibleName(), QStringLiteral("Search Snippets"));
}

TEST(MenuPlacementTest, MenusStayOnTheScreenOfThePointer) {
  const QRect room(1000, 30, 800, 570);  // a second screen with a panel at its top
  const auto placed = [&](int x, int y, Qt::LayoutDirection direction = Qt::LeftToRight) {
    return QRect(placeAtPointer({x, y}, {300, 400}, room, direction), QSize(300, 400));
  };
  EXPECT_EQ(placed(1100, 50).topLeft(), QPoint(1100, 50));
  EXPECT_EQ(placed(1500, 50, Qt::RightToLeft).topLeft(), QPoint(1200, 50));
  EXPECT_EQ(placed(1100, 595).topLeft(), QPoint(1100, 195)) << "above the pointer";
  EXPECT_EQ(placed(1100, 350).topLeft(), QPoint(1100, 200)) << "there is room neither above nor below";
  for (const auto& place : {placed(1799, 599), placed(1000, 0, Qt::RightToLeft), placed(1000, 599)}) {
    EXPECT_TRUE(room.contains(place));
  }
  EXPECT_EQ(placeAtPointer({1100, 50}, {2000, 2000}, room, Qt::LeftToRight), room.topLeft());

  const auto beside = [&](int x, Qt::LayoutDirection direction) {
    return placeBeside({x, 500, 300, 20}, {200, 150}, room, direction).x();
  };
  EXPECT_EQ(beside(1100, Qt::LeftToRight), 1400);
  EXPECT_EQ(beside(1400, Qt::LeftToRight), 1200);
  EXPECT_EQ(beside(1400, Qt::RightToLeft), 1200);
  EXPECT_EQ(beside(1100, Qt::RightToLeft), 1400);
}

}  // namespace
}  // namespace quorlo
