#include "ui/fill_in_window.h"
#include "app/settings/settings_controller.h"
#include "engine/fill_in/fill_in_session.h"
#include "fakes/fake_environment.h"
#include "fakes/fake_main_queue.h"
#include "fakes/fake_user_defaults.h"
#include "macros/ql_snippet_macro_interpreter.h"
#include "ui/event_loop.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDateTimeEdit>
#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTextEdit>
#include <QTimeZone>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {
namespace {

using Outcome = FillInView::Outcome;

// The window and somebody at its keyboard.
struct FillInWindowTest : testing::Test {
  void open(const std::u16string& text) {
    session =
        std::make_unique<FillInSession>(AttributedString(text), fillInMacros(text).fields, FillInPreview{},
                                        momentOf(environment.now()), interpreter.dateAndTimeFormatter());
    outcome.reset();
    window.open(*session, [this](Outcome decided) { outcome = decided; });
    dialog = qobject_cast<QDialog*>(QWidget::find(window.nativeWindow()));
    ASSERT_TRUE(runEventLoopUntil([&] { return dialog->isVisible(); }));
  }
  QWidget* focused() { return dialog->focusWidget(); }
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(focused(), key, modifiers);
    QCoreApplication::processEvents();
  }
  void type(const char* text) { QTest::keyClicks(focused(), QString::fromUtf8(text)); }
  std::u16string preview() const {
    QCoreApplication::processEvents();
    return dialog->findChild<QTextEdit*>()->toPlainText().toStdU16String();
  }

  FakeEnvironment environment;
  QLSnippetMacroInterpreter interpreter{environment, [](const auto&) { return std::nullopt; }};
  FakeMainQueue queue;
  FakeUserDefaults defaults;
  SettingsController settings{defaults, queue, [this] { return environment.now(); },
                              [] { return std::nullopt; }};
  FillInWindow window{settings};
  std::unique_ptr<FillInSession> session;
  std::optional<Outcome> outcome;
  QDialog* dialog = nullptr;
};

TEST_F(FillInWindowTest, IsFilledInByKeyboardAloneWithALivePreview) {
  open(
      u"%textfield:name=Name:default=Ada:textfield%|%options:name=One:default=1:name0=a:name1=b:options%|"
      u"%options:name=Many:default=0:name0=c:name1=d:multiple=1:options%|"
      u"%date:dateLength=short:timeLength=none:showPicker=1:date%|%textfield:name=Last:textfield%");
  ASSERT_TRUE(runEventLoopUntil([&] { return dialog->isActiveWindow(); }));
  EXPECT_EQ(preview(), u"Ada|b|c|11/14/23|");
  EXPECT_EQ(focused()->accessibleName(), QStringLiteral("Name"));
  type("Grace");  // over the default
  press(Qt::Key_Tab);
  EXPECT_EQ(focused()->accessibleName(), QStringLiteral("One"));
  press(Qt::Key_Up);
  press(Qt::Key_Tab);
  press(Qt::Key_Down);
  press(Qt::Key_Space);
  EXPECT_EQ(preview(), u"Grace|a|c, d|11/14/23|");
  press(Qt::Key_Tab);
  EXPECT_EQ(focused()->accessibleName(), QStringLiteral("Date"));
  press(Qt::Key_Up);
  EXPECT_NE(preview(), u"Grace|a|c, d|11/14/23|");
  dialog->findChild<QDateTimeEdit*>()->setDateTime(QDateTime(QDate(1901, 2, 3), QTime(12, 0)));
  for (const auto* const input : dialog->findChildren<QPlainTextEdit*>()) {
    EXPECT_FALSE(input->accessibleName().isEmpty());
  }
  while (focused()->accessibleName() != QStringLiteral("Last")) press(Qt::Key_Tab);
  type("end");
  EXPECT_EQ(preview(), u"Grace|a|c, d|2/3/01|end");
  EXPECT_FALSE(outcome);
  press(Qt::Key_Return);
  EXPECT_EQ(outcome, Outcome::insert);
  EXPECT_TRUE(dialog->isVisible()) << "until the user's window has the keyboard";
  window.close();
  EXPECT_FALSE(dialog->isVisible());
}

TEST_F(FillInWindowTest, AFieldOfSeveralLinesTakesReturnForALineAndCtrlReturnInserts) {
  open(u"%textfield:name=A:default=x\ny:textfield%%textfield:name=B:textfield%");
  press(Qt::Key_End, Qt::ControlModifier);
  press(Qt::Key_Return);
  type("z");
  EXPECT_EQ(session->text(0), u"x\ny\nz");
  press(Qt::Key_Tab);
  const int oneLine = focused()->height();
  press(Qt::Key_Return, Qt::ShiftModifier);
  type("b");
  EXPECT_EQ(session->text(1), u"\nb");
  QCoreApplication::processEvents();
  EXPECT_GT(focused()->height(), oneLine);
  press(Qt::Key_Return);
  EXPECT_EQ(session->text(1), u"\nb\n");
  EXPECT_FALSE(outcome);
  press(Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(outcome, Outcome::insert);
}

TEST_F(FillInWindowTest, EscapeClosingAndCancelCallOffAndReturnInsertsFromEveryKindOfField) {
  for (const auto* const text :
       {u"%textfield:name=A:textfield%", u"%options:name=A:default=0:name0=a:name1=b:options%",
        u"%options:name=A:default=0:name0=a:multiple=1:options%",
        u"%date:dateLength=none:timeLength=short:showPicker=1:date%"}) {
    open(text);
    press(Qt::Key_Escape);
    EXPECT_EQ(outcome, Outcome::cancel);
    open(text);
    press(Qt::Key_Return);
    EXPECT_EQ(outcome, Outcome::insert);
    open(text);
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(outcome, Outcome::insert);
  }
  open(u"%textfield:name=A:textfield%");
  dialog->close();
  EXPECT_EQ(outcome, Outcome::cancel);
  open(u"%textfield:name=A:textfield%");
  dialog->findChildren<QPushButton*>().back()->click();
  EXPECT_EQ(outcome, Outcome::cancel);
}

TEST_F(FillInWindowTest, OffersToCopyWhatCannotBeInserted) {
  open(u"%textfield:name=A:textfield%");
  type("kept");
  press(Qt::Key_Return);
  outcome.reset();
  window.offerCopy([this](Outcome decided) { outcome = decided; });
  EXPECT_EQ(session->text(0), u"kept");
  auto* const copy = dialog->findChildren<QPushButton*>().front();
  EXPECT_EQ(copy->text(), QStringLiteral("Copy"));
  copy->click();
  EXPECT_EQ(outcome, Outcome::insert);
}

TEST_F(FillInWindowTest, StaysOnTheScreenWithTenThousandFieldsAndWithoutAPreview) {
  settings.setPreviewWindowPosition(PreviewWindowPosition::nextToCursor);
  settings.setShowMacroReplacementPreviewInReplacementView(false);
  std::u16string text;
  for (int i = 0; i < 10'000; ++i) {
    text += u"%textfield:name=" + QString::number(i).toStdU16String() + u":textfield%";
  }
  const auto room = QGuiApplication::primaryScreen()->availableGeometry();
  QCursor::setPos(room.bottomRight());
  open(text);
  EXPECT_EQ(room.united(dialog->geometry()), room);
  EXPECT_FALSE(dialog->findChild<QTextEdit*>()->isVisible());
  ASSERT_TRUE(runEventLoopUntil([&] { return dialog->isActiveWindow(); }));
  for (int i = 0; i < 100; ++i) press(Qt::Key_Tab);
  type("x");
  EXPECT_EQ(session->text(100), u"x");
  open(u"%textfield:name=:default=few:textfield%");
  EXPECT_EQ(dialog->findChildren<QPlainTextEdit*>().size(), 1);
}

}  // namespace
}  // namespace quorlo
