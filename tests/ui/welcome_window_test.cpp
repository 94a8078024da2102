#include "ui/welcome/welcome_window.h"
#include "macros/ql_snippet_macro_interpreter.h"
#include "store/records/ql_snippet.h"
#include "ui/settings_world.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

namespace quorlo {
namespace {

struct WelcomeWindowTest : testing::Test, SettingsWorld {
  void addSnippet(const std::u16string& abbreviation, const std::u16string& text) {
    const auto snippet = library.insert<QLSnippet>();
    snippet->setAbbreviation(abbreviation);
    snippet->setText(AttributedString(text));
  }
  void press(const char* text) {
    for (auto* const button : window.findChildren<QPushButton*>()) {
      if (button->isVisible() && button->text().remove(QLatin1Char('&')) == QString::fromUtf8(text)) {
        return button->click();
      }
    }
    ADD_FAILURE() << "There is no button " << text;
  }
  QCheckBox* box(const char* text) {
    for (auto* const each : window.findChildren<QCheckBox*>()) {
      if (each->text().remove(QLatin1Char('&')) == QString::fromUtf8(text)) return each;
    }
    return nullptr;
  }
  QString tryOut(const char* keys) {
    auto* const edit = window.findChild<QPlainTextEdit*>();
    const auto text = QString::fromUtf8(keys);
    edit->setPlainText(text.chopped(1));
    edit->moveCursor(QTextCursor::End);
    QTest::keyClick(edit, text.back().toLatin1());
    return edit->toPlainText();
  }

  QLSnippetMacroInterpreter interpreter{environment, [](const auto&) { return std::nullopt; }};
  std::vector<bool> answers;
  int closings = 0;
  WelcomeWindow window{{settings, launchAtLogin, hotKeys, desktop, library, interpreter,
                        [this](std::u16string_view typed) {
                          return AbbreviationsMonitor::Match{library.liveSnippet(typed).value(), typed};
                        },
                        services.menuShortcut, services.setMenuShortcut, [this] { return answers.empty(); },
                        [this](bool accepted) {
                          answers.push_back(accepted);
                          if (accepted) addSnippet(u"brb", u"be right back");
                          return Status();
                        },
                        [this] { ++closings; }}};
};

TEST_F(WelcomeWindowTest, LeadsThroughThreeStepsAndCountsAsShownOnceClosed) {
  window.show();
  box("Expand abbreviations as I type")->click();
  EXPECT_TRUE(settings.abbreviationsEnabled());
  QTest::keyClick(box("Expand abbreviations as I type"), Qt::Key_Return);
  EXPECT_EQ(answers, std::vector{true});
  EXPECT_EQ(tryOut("so brb "), QStringLiteral("so be right back "));
  press("Back");
  press("Continue");
  EXPECT_EQ(answers.size(), 1U) << "asked once";
  QTest::keyClick(window.findChild<QPlainTextEdit*>(), Qt::Key_Return);
  press("Use Ctrl+Alt+Space");
  EXPECT_EQ(menuShortcut, (Shortcut{key::kSpace, modifier::kCommand | modifier::kOption}));
  EXPECT_FALSE(settings.welcomeViewHasBeenShown());
  press("Start Using Quorlo");
  EXPECT_TRUE(settings.welcomeViewHasBeenShown());
  EXPECT_FALSE(window.isVisible());
  EXPECT_EQ(closings, 1);
}

TEST_F(WelcomeWindowTest, ClosedAtOnceItCountsAsShownAndAddsNothing) {
  window.show();
  const auto monitor = settings.observe([&](Setting setting) {
    // As without permission.
    if (setting == Setting::abbreviationsEnabled && settings.abbreviationsEnabled()) {
      settings.setAbbreviationsEnabled(false);
    }
  });
  box("Expand abbreviations as I type")->click();
  EXPECT_FALSE(box("Expand abbreviations as I type")->isChecked());
  window.close();
  EXPECT_TRUE(settings.welcomeViewHasBeenShown());
  EXPECT_TRUE(answers.empty());
}

TEST_F(WelcomeWindowTest, TheFieldExpandsAsTheSettingsSay) {
  addSnippet(u"cur", u"(%cursor%)");
  addSnippet(u"😀x", u"emoji");
  window.show();
  press("Continue");
  EXPECT_EQ(tryOut("cur "), QStringLiteral("() "));
  QTest::keyClicks(window.findChild<QPlainTextEdit*>(), QStringLiteral("in"));
  EXPECT_EQ(window.findChild<QPlainTextEdit*>()->toPlainText(), QStringLiteral("(in) ")) << "the caret moved";
  EXPECT_EQ(tryOut("a 😀x "), QStringLiteral("a emoji "));
  EXPECT_EQ(tryOut("cur."), QStringLiteral("cur.")) << "no delimiter";
  settings.setRemoveTriggerKey(true);
  EXPECT_EQ(tryOut("brb "), QStringLiteral("be right back"));
  settings.setAbbreviationsTriggerType(AbbreviationTriggerType::lastSymbol);
  EXPECT_EQ(tryOut("brb"), QStringLiteral("be right back"));
  tryOut("brbx");
  QTest::keyClick(window.findChild<QPlainTextEdit*>(), Qt::Key_Backspace);
  EXPECT_EQ(window.findChild<QPlainTextEdit*>()->toPlainText(), QStringLiteral("brb")) << "types nothing";
}

}  // namespace
}  // namespace quorlo
