#include "app/settings/settings_controller.h"
#include "engine/fill_in/fill_in_controller.h"
#include "engine/fill_in/fill_in_session.h"
#include "fakes/fake_desktop.h"
#include "fakes/fake_environment.h"
#include "fakes/fake_target_focus.h"
#include "fakes/fake_user_defaults.h"
#include "macros/ql_snippet_macro_interpreter.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace quorlo {
namespace {

constexpr std::size_t kWhole = 1000;

struct FillInSessionTest : testing::Test {
  FillInSession sessionOf(const std::u16string& text, FillInPreview preview = {}) {
    return FillInSession(AttributedString(text), fillInMacros(text).fields, preview,
                         momentOf(environment.now()), interpreter.dateAndTimeFormatter());
  }
  static std::u16string read(const FillInSession& session) { return session.preview(kWhole).text.string(); }
  std::u16string inserted(const FillInSession& session) const {
    return interpreter.evaluate(session.snippetText(), kAllMacroTypes, session.answers()).text.string();
  }

  FakeEnvironment environment;
  QLSnippetMacroInterpreter interpreter{environment, [](const auto&) { return std::nullopt; }};
};

TEST_F(FillInSessionTest, BeginsWithTheDefaultsAndReadsAsWhatWillBeInserted) {
  const std::u16string text =
      u"%textfield:name=A:default=two\nlines:textfield%|%options:name=B:default=1:name0=x:name1=y:options%|"
      u"%textfield:name=A:default=other:textfield%|%textfield:name=:default=1:textfield%|"
      u"%date:dateLength=short:timeLength=none:math=1:mathType=days:showPicker=1:date%";
  auto session = sessionOf(text);
  ASSERT_EQ(session.fields().size(), 4U) << "one name is one question";
  EXPECT_EQ(read(session), u"two\nlines|y|two\nlines|1|11/15/23");
  EXPECT_EQ(read(session), inserted(session));

  session.setText(0, u"שלום");
  session.choose(1, {0});
  session.setText(2, u"%clipboard%");
  session.pick(3, Moment(std::chrono::sys_days(std::chrono::year(1901) / 2 / 3)));
  EXPECT_EQ(read(session), u"שלום|x|שלום|%clipboard%|2/3/01") << "what is entered is no markup";
  EXPECT_EQ(read(session), inserted(session));
}

TEST_F(FillInSessionTest, JoinsSeveralChoicesAsEachMacroOfTheNameAsks) {
  const std::u16string entries = u"default=0:name0=a:name1=b:name2=c:multiple=1";
  auto session = sessionOf(u"%options:name=N:" + entries + u":separator=/:options%|%options:name=N:" +
                           entries + u":choiceType=bulletedList:options%|%options:name=N:" + entries +
                           u":choiceType=dashedList:options%");
  EXPECT_EQ(session.chosen(0), std::vector<std::size_t>{0});
  session.choose(0, {0, 2});
  EXPECT_EQ(read(session), u"a/c|• a\n• c|- a\n- c");
  session.choose(0, {});
  EXPECT_EQ(read(session), u"||");
  EXPECT_EQ(read(session), inserted(session));
}

TEST_F(FillInSessionTest, ShowsWhatAsksNothingAsTheSettingsSay) {
  const std::u16string text =
      u"%textfield:name=A:default=hi:textfield% %clipboard:pasteText=1:clipboard% "
      u"%date:dateLength=short:timeLength=none:date% "
      u"%specialKey:value=tab:specialKey%%specialKey:code=1:modFlags=0:specialKey%%cursor:cursor%";
  EXPECT_EQ(read(sessionOf(text)), u"hi ‹Clipboard› ‹Date› ⇥⌨│");
  EXPECT_EQ(read(sessionOf(text, {.allMacros = true})),
            u"hi ‹Clipboard› 11/14/23 ‹⇥ (Tab)›‹Key Combination›‹Cursor›");
  auto session = sessionOf(text, {.clipboardContent = true});
  EXPECT_TRUE(session.showsClipboard());
  session.setClipboard(AttributedString(u"copied"));
  EXPECT_EQ(read(session), u"hi copied ‹Date› ⇥⌨│");
  EXPECT_FALSE(sessionOf(u"%textfield:name=A:textfield%", {.clipboardContent = true}).showsClipboard());
}

TEST_F(FillInSessionTest, CutsALongPreviewAndTellsWhereAnswersStand) {
  std::u16string text = u"%textfield:name=A:default=abc:textfield%, ";
  for (int i = 0; i < 10; ++i) text += text.substr(0, 100'000);
  const auto session = sessionOf(text);
  const auto reading = session.preview(12);
  EXPECT_EQ(reading.text.string(), u"abc, abc, ab…");
  ASSERT_GE(reading.places.size(), 2U);
  EXPECT_EQ(reading.places[1].range, (TextRange{5, 3}));
  EXPECT_EQ(reading.places[1].field, 0U);
}

// A window that does what the test says.
struct FakeFillInView : FillInView {
  void open(FillInSession& opened, std::function<void(Outcome)> whenDone) override {
    session = &opened;
    done = std::move(whenDone);
    offersCopy = false;
  }
  void refreshPreview() override { preview = session->preview(kWhole).text.string(); }
  void offerCopy(std::function<void(Outcome)> whenDone) override {
    offersCopy = true;
    done = std::move(whenDone);
  }
  void close() override { session = nullptr; }
  std::uintptr_t nativeWindow() const override { return 7; }

  FillInSession* session = nullptr;  // while it is open
  std::function<void(Outcome)> done;
  bool offersCopy = false;
  std::u16string preview;
};

struct FillInControllerTest : FillInSessionTest {
  void ask(const std::u16string& text) {
    prompt.ask(AttributedString(text), fillInMacros(text).fields, [this](std::optional<FillInAnswers> given) {
      ++completions;
      answers = std::move(given);
      activeAtCompletion = focus.activeOwnWindow;
      holdsAtCompletion = desktop.holdsKeys();
    });
  }

  FakeDesktop desktop;
  FakeTargetFocus focus{desktop.queue};
  FakeUserDefaults defaults;
  SettingsController settings{defaults, desktop.queue, [this] { return environment.now(); },
                              [] { return std::nullopt; }};
  FakeFillInView view;
  FillInController prompt{
      {desktop.queue, desktop.pasteboard, focus, desktop, settings, environment, interpreter, view}};
  int completions = 0;
  std::optional<FillInAnswers> answers;
  std::uintptr_t activeAtCompletion = 99;
  bool holdsAtCompletion = false;
};

TEST_F(FillInControllerTest, HandsOverTheAnswersOnceTheUsersWindowIsBackAndHoldsWhatIsTypedMeanwhile) {
  ask(u"%textfield:name=A:textfield%");
  EXPECT_EQ(focus.activeOwnWindow, 7U);
  EXPECT_FALSE(desktop.holdsKeys()) << "keys belong to the window";
  view.session->setText(0, u"Ada");
  view.done(FillInView::Outcome::insert);
  view.session->setText(0, u"Ada!");  // by a key typed too late
  EXPECT_TRUE(desktop.holdsKeys());
  EXPECT_EQ(completions, 0);
  desktop.queue.settle();
  EXPECT_EQ(completions, 1);
  EXPECT_EQ(answers, (FillInAnswers{std::u16string(u"Ada")}));
  EXPECT_EQ(activeAtCompletion, 0U);
  EXPECT_TRUE(holdsAtCompletion) << "the insertion takes the hold over";
  EXPECT_FALSE(desktop.holdsKeys());
  EXPECT_EQ(view.session, nullptr);
}

TEST_F(FillInControllerTest, CallsOffOnCancelAndWhenAnotherQuestionComes) {
  ask(u"%textfield:name=A:textfield%");
  view.done(FillInView::Outcome::cancel);
  focus.targetIsThere = false;
  desktop.queue.settle();
  EXPECT_EQ(completions, 1);
  EXPECT_FALSE(answers);
  EXPECT_FALSE(view.offersCopy) << "nothing to save";
  EXPECT_EQ(view.session, nullptr);

  ask(u"%textfield:name=A:textfield%");
  const auto staleDone = view.done;
  ask(u"%textfield:name=B:textfield%");
  desktop.queue.settle();
  EXPECT_EQ(completions, 2);
  staleDone(FillInView::Outcome::insert);
  desktop.queue.settle();
  EXPECT_EQ(completions, 2);
  EXPECT_EQ(view.session->fields()[0].name, u"B");
}

TEST_F(FillInControllerTest, OffersTheTextForCopyingWhenTheUsersWindowIsGone) {
  desktop.pasteboard.copyFromElsewhere("mine");
  ask(u"Dear %textfield:name=A:textfield%");
  view.session->setText(0, u"Ada");
  focus.targetIsThere = false;
  testing::internal::CaptureStderr();
  view.done(FillInView::Outcome::insert);
  desktop.queue.settle();
  EXPECT_NE(testing::internal::GetCapturedStderr().find("WARNING: #fi7Tgn"), std::string::npos);
  EXPECT_EQ(completions, 1);
  EXPECT_FALSE(answers);
  EXPECT_FALSE(desktop.holdsKeys());
  ASSERT_TRUE(view.offersCopy);
  EXPECT_EQ(desktop.pasteboard.text(), "mine");
  view.done(FillInView::Outcome::insert);
  EXPECT_EQ(desktop.pasteboard.text(), "Dear Ada");
  EXPECT_EQ(view.session, nullptr);
  EXPECT_EQ(completions, 1);
}

TEST_F(FillInControllerTest, ReadsTheClipboardOnlyWhereThePreviewShowsIt) {
  settings.setShowClipboardContentInReplacementView(true);
  desktop.pasteboard.copyFromElsewhere("copied");
  ask(u"%textfield:name=A:default=a:textfield%%clipboard:clipboard%");
  desktop.queue.settle();
  EXPECT_EQ(view.preview, u"acopied");
}

}  // namespace
}  // namespace quorlo
