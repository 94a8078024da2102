#include "ui/settings/settings_window.h"
#include "store/records/ql_app.h"
#include "store/records/ql_category.h"
#include "ui/event_loop.h"
#include "ui/settings/application_chooser.h"
#include "ui/settings/hot_key_field.h"
#include "ui/settings/insertion_entry_dialog.h"
#include "ui/settings_world.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedWidget>
#include <QTest>
#include <QTreeWidget>

#include <fstream>

namespace quorlo {
namespace {

struct SettingsWindowTest : testing::Test, SettingsWorld {
  template <class Control>
  Control* named(const char* name) {
    for (auto* const each : window.findChildren<Control*>()) {
      const auto* const face = QAccessible::queryAccessibleInterface(each);
      if (face && face->text(QAccessible::Name) == QString::fromUtf8(name)) return each;
    }
    ADD_FAILURE() << "There is no control " << name;
    return nullptr;
  }
  void showPage(const char* title) {
    window.show();
    auto* const titles = window.findChild<QListWidget*>();
    titles->setCurrentItem(titles->findItems(QString::fromUtf8(title), Qt::MatchExactly).value(0));
  }
  std::vector<std::string> excluded() {
    std::vector<std::string> identifiers;
    const auto records = library.fetch<QLApp>({.predicate = QLApp::kType.equals(0)}).value();
    for (const auto& each : records) identifiers.push_back(each->bundleID());
    return identifiers;
  }

  SettingsWindow window{services};
};

TEST_F(SettingsWindowTest, WhatIsChangedInOneWindowIsStoredAndShownByAnother) {
  SettingsWindow other(services);
  const auto boxes = window.findChildren<QCheckBox*>();
  const auto otherBoxes = other.findChildren<QCheckBox*>();
  ASSERT_GT(boxes.size(), 50);
  for (int i = 0; i < boxes.size(); ++i) {
    if (!boxes[i]->isEnabled()) continue;
    const auto name = boxes[i]->text().toStdString();
    for (const bool on : {!boxes[i]->isChecked(), boxes[i]->isChecked()}) {
      boxes[i]->click();
      if (boxes[i]->text().remove(QLatin1Char('&')) == QStringLiteral("Space")) continue;  // never the last
      EXPECT_EQ(boxes[i]->isChecked(), on) << name;
      EXPECT_EQ(otherBoxes[i]->isChecked(), on) << name;
    }
  }
  const auto lists = window.findChildren<QComboBox*>();
  for (int i = 0; i < lists.size(); ++i) {
    QTest::keyClick(lists[i], lists[i]->currentIndex() == 0 ? Qt::Key_Down : Qt::Key_Up);
    EXPECT_EQ(other.findChildren<QComboBox*>()[i]->currentText(), lists[i]->currentText());
  }
  window.findChildren<QRadioButton*>().front()->click();
  EXPECT_TRUE(other.findChildren<QRadioButton*>().front()->isChecked());
  EXPECT_FALSE(named<QCheckBox>("Exclamation mark")->isEnabled());
  window.findChild<QDoubleSpinBox*>()->setValue(0.75);
  EXPECT_EQ(other.findChild<QDoubleSpinBox*>()->value(), 0.75);
  EXPECT_EQ(settings.pasteBetweenSnippetPartsDelay(), Seconds(0.75));
}

TEST_F(SettingsWindowTest, FollowsOtherProcessesAndShowsWhatARefusalLeaves) {
  auto* const abbreviations = named<QCheckBox>("Expand abbreviations as I type");
  defaults.changeFromElsewhere(DefaultsDomain::appGroup, "AbbreviationsEnabled", true);
  EXPECT_TRUE(abbreviations->isChecked());
  abbreviations->click();
  EXPECT_FALSE(settings.abbreviationsEnabled());
  desktop.grantTrust(false);
  settings.setAutoPasteIsEnabled(false);
  auto* const autoPaste = named<QCheckBox>("Auto-Paste");
  autoPaste->click();
  EXPECT_FALSE(autoPaste->isChecked());
  std::ofstream(folder.path().toStdString() + "/autostart") << "no folder";
  auto* const launch = named<QCheckBox>("Launch at login");
  launch->click();
  EXPECT_FALSE(launch->isChecked());
  named<QCheckBox>("Space")->click();
  EXPECT_TRUE(named<QCheckBox>("Space")->isChecked()) << "the last delimiter";
}

TEST_F(SettingsWindowTest, EveryControlCanBeReachedByKeyboardAndReadAloud) {
  showPage("General");
  const auto* const pages = window.findChild<QStackedWidget*>();
  for (int i = 0; i < pages->count(); ++i) {
    const auto* const page = pages->widget(i);
    QStringList mnemonics;
    for (const auto* const each : page->findChildren<QAbstractButton*>()) {
      const auto mark = each->text().indexOf(QLatin1Char('&'));
      if (mark >= 0 && each->text() != QStringLiteral("&&"))
        mnemonics << each->text().mid(mark + 1, 1).toLower();
    }
    EXPECT_EQ(mnemonics.removeDuplicates(), 0) << mnemonics.join(QLatin1Char(' ')).toStdString();
    for (auto* const each : page->findChildren<QWidget*>()) {
      if (!(each->focusPolicy() & Qt::TabFocus) || qobject_cast<QLabel*>(each)) continue;
      const auto* const face = QAccessible::queryAccessibleInterface(each);
      const bool isPartOfField = qobject_cast<QLineEdit*>(each) != nullptr;
      EXPECT_TRUE(isPartOfField || (face && !face->text(QAccessible::Name).isEmpty()))
          << each->metaObject()->className();
    }
  }
}

TEST_F(SettingsWindowTest, ApplicationsAreExcludedByChoiceOrByIdentifierAndTakenBackIn) {
  desktop.installed = {{"org.example.Writer", "Writer", ""}, {"org.example.Editor", "The Editor", ""}};
  showPage("Applications");
  const auto choose = [&](const char* text) {
    named<QPushButton>("Add Application…")->click();
    auto* const chooser = dynamic_cast<ApplicationChooser*>(window.findChild<QDialog*>());
    ASSERT_NE(chooser, nullptr);
    EXPECT_EQ(chooser->bundleIdentifier(), "org.example.Editor") << "the one that runs";
    QTest::keyClicks(chooser->findChild<QLineEdit*>(), QString::fromUtf8(text));
    chooser->accept();
    runEventLoopUntil([&] { return !window.findChild<QDialog*>(); });
  };
  choose("wri");
  choose("com.example.Hidden");
  choose("Writer");  // again
  EXPECT_EQ(excluded(), (std::vector<std::string>{"org.example.Writer", "com.example.Hidden"}));
  auto* const list = named<QListWidget>("Applications without abbreviations");
  EXPECT_EQ(list->findItems(QStringLiteral("Writer"), Qt::MatchExactly).size(), 1) << "by its name";
  list->setCurrentItem(list->findItems(QStringLiteral("Writer"), Qt::MatchExactly).value(0));
  list->setFocus();
  window.activateWindow();
  ASSERT_TRUE(runEventLoopUntil([&] { return list->hasFocus(); }));
  QTest::keyClick(list, Qt::Key_Delete);
  EXPECT_EQ(excluded(), std::vector<std::string>{"com.example.Hidden"});
  EXPECT_EQ(list->count(), 1);
}

TEST_F(SettingsWindowTest, AnApplicationGetsAWayOfPastingThatCanBeChangedAndRemoved) {
  const auto rows = [&] {
    std::vector<std::string> all;
    auto* const table = window.findChild<QTreeWidget*>();
    for (int i = 0; i < table->topLevelItemCount(); ++i) {
      auto* const item = table->topLevelItem(i);
      all.push_back((item->text(0) + QStringLiteral(": ") + item->text(1)).toStdString());
    }
    return all;
  };
  const auto answer = [&](int way, const char* keys, double pause) {
    auto* const dialog = dynamic_cast<InsertionEntryDialog*>(window.findChild<QDialog*>());
    ASSERT_NE(dialog, nullptr);
    dialog->findChild<QComboBox*>()->setCurrentIndex(way);
    if (keys != nullptr) dialog->findChildren<QLineEdit*>()[1]->setText(QString::fromUtf8(keys));
    dialog->findChild<QDoubleSpinBox*>()->setValue(pause);
    auto* const save = dialog->findChild<QDialogButtonBox*>()->buttons().front();
    ASSERT_TRUE(save->isEnabled());
    save->click();
    ASSERT_TRUE(runEventLoopUntil([&] { return !window.findChild<QDialog*>(); }));
  };
  window.show();
  window.askForWay("Viewer");
  answer(2, "Ctrl+r plus", 0);
  EXPECT_EQ(rows(), std::vector<std::string>{"Viewer: Paste with Ctrl+r Plus"});
  window.askForWay("viewer");
  auto* const dialog = window.findChild<QDialog*>();
  EXPECT_EQ(dialog->findChildren<QLineEdit*>()[1]->text(), QStringLiteral("Ctrl+r Plus"));
  dialog->findChildren<QLineEdit*>()[1]->setText(QStringLiteral("Ctrl+nothing"));
  EXPECT_FALSE(dialog->findChild<QDialogButtonBox*>()->buttons().front()->isEnabled());
  answer(3, nullptr, 0.2);
  EXPECT_EQ(rows(), std::vector<std::string>{"Viewer: Type the text, pause 0.2 s"});
  EXPECT_EQ(insertion.table().profileFor("viewer", {}).method, InsertionMethod::type);
  window.findChild<QTreeWidget*>()->setCurrentItem(window.findChild<QTreeWidget*>()->topLevelItem(0));
  window.findChild<QTreeWidget*>()->parentWidget()->findChildren<QPushButton*>()[2]->click();
  EXPECT_EQ(rows(), std::vector<std::string>());
  EXPECT_TRUE(insertion.entries().empty());
}

TEST_F(SettingsWindowTest, SoundsAreHeardWhenChosenAndAMissingOneSelectsNothing) {
  std::ofstream(sound.customSoundsFolder() / "gong.wav") << "sound";
  settings.setCustomSnippetSound("lost.wav");
  settings.setSnippetExpansionSound(SnippetExpansionSound::custom);
  auto* const list = named<QListWidget>("Sounds");
  EXPECT_EQ(list->currentItem(), nullptr);
  player.durations[sound.customSoundsFolder() / "gong.wav"] = Seconds(1);
  list->setCurrentItem(list->findItems(QStringLiteral("gong.wav"), Qt::MatchExactly).value(0));
  background.runAll();
  EXPECT_EQ(player.played.size(), 1U);
  EXPECT_EQ(settings.customSnippetSound(), "gong.wav");
  list->setCurrentItem(list->findItems(QStringLiteral("Fairy"), Qt::MatchExactly).value(0));
  EXPECT_EQ(settings.snippetExpansionSound(), SnippetExpansionSound::fairy);
}

struct HotKeyFieldTest : testing::Test, SettingsWorld {
  HotKeyFieldTest() {
    field.setHandler([this](std::optional<Shortcut> shortcut) { chosen.push_back(shortcut); });
    field.show();
    button->setFocus();
  }
  void press(int key, Qt::KeyboardModifiers modifiers, Shortcut native) {
    for (const auto type : {QEvent::ShortcutOverride, QEvent::KeyPress}) {
      QKeyEvent event(type, key, modifiers, native.keyCode, 0, native.modifierFlags);
      QCoreApplication::sendEvent(button, &event);
    }
  }
  QString notice() const {
    const auto* const label = field.findChild<QLabel*>();
    return label->isVisible() ? label->text() : QString();
  }

  const Shortcut ctrlTab{key::kTab, modifier::kCommand};
  HotKeyField field{hotKeys, desktop, QStringLiteral("Hot key")};
  QPushButton* button = field.findChild<QPushButton*>();
  std::vector<std::optional<Shortcut>> chosen;
};

TEST_F(HotKeyFieldTest, RecordsACombinationWhileAllOthersAreSuspended) {
  bool called = false;
  const auto registered = hotKeys.registerHotKey({key::kSpace, modifier::kCommand}, [&] { called = true; });
  button->click();
  EXPECT_FALSE(hotKeys.press({key::kSpace, modifier::kCommand}));
  press(Qt::Key_Tab, Qt::ControlModifier, ctrlTab);
  ASSERT_EQ(chosen.size(), 1U);
  EXPECT_EQ(chosen.back(), ctrlTab);
  EXPECT_EQ(button->text(), QStringLiteral("Ctrl+Tab"));
  EXPECT_TRUE(hotKeys.press({key::kSpace, modifier::kCommand})) << "no longer suspended";
  button->click();
  press(Qt::Key_Escape, {}, {key::kEscape, 0});
  EXPECT_EQ(field.shortcut(), ctrlTab);
  button->click();
  press(Qt::Key_Backspace, {}, {key::kBackspace, 0});
  EXPECT_EQ(chosen.back(), std::nullopt);
}

TEST_F(HotKeyFieldTest, KeepsTheOldCombinationAndSaysWhyTheNewOneCannotBeHad) {
  field.setShortcut(ctrlTab);
  hotKeys.takenByOthers.insert({key::kSpace, modifier::kCommand});
  button->click();
  press(Qt::Key_Space, Qt::ControlModifier, {key::kSpace, modifier::kCommand});
  EXPECT_EQ(notice(), QStringLiteral("The combination is taken"));
  button->click();
  EXPECT_EQ(notice(), QString());
  press(Qt::Key_A, {}, {0, 0});
  EXPECT_NE(notice(), QString()) << "a key for typing";
  EXPECT_TRUE(chosen.empty());
  EXPECT_EQ(field.shortcut(), ctrlTab);
  button->click();
  field.hide();
  EXPECT_EQ(button->text(), QStringLiteral("Ctrl+Tab")) << "not recording any more";
}

}  // namespace
}  // namespace quorlo
