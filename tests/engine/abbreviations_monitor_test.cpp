#include "engine/abbreviations_monitor.h"

#include "base/log.h"
#include "engine/expansion_world.h"

#include <functional>
#include <string>
#include <vector>

namespace quorlo {
namespace {

using MonitorTest = ExpansionWorld;

TEST_F(MonitorTest, ADelimiterExpandsAndIsTypedAgainAfterTheSnippet) {
  add(u"sig", u"Kind regards");
  desktop.typeAndWait(u"sig x");
  EXPECT_EQ(desktop.text(), u"Kind regards x");
  EXPECT_EQ(monitor.typedText(), u"x");
}

TEST_F(MonitorTest, TheDelimiterIsDroppedWhereTheUserWantsItRemoved) {
  add(u"sig", u"Kind regards");
  settings.setRemoveTriggerKey(true);
  desktop.typeAndWait(u"sig x");
  EXPECT_EQ(desktop.text(), u"Kind regardsx");
}

TEST_F(MonitorTest, OnlySelectedDelimitersExpand) {
  add(u"sig", u"S");
  settings.setAbbreviationDelimiterKey(DelimiterKeys(4 | 0x10000));  // Return and full stop
  desktop.typeAndWait(u"sig sig\nsig.sig,");
  EXPECT_EQ(desktop.text(), u"sig S\nS.sig,");
}

TEST_F(MonitorTest, ADelimiterThatIsNoResetKeyJoinsTheBuffer) {
  add(u"sig", u"S");
  settings.setAbbreviationDelimiterKey(DelimiterKeys(0x10000));
  desktop.type(u"sig.");
  EXPECT_EQ(monitor.typedText(), u"sig.");
}

TEST_F(MonitorTest, AChordIsNoDelimiterAndEndsTheWord) {
  add(u"sig", u"S");
  settings.setAbbreviationDelimiterKey(DelimiterKeys(1 | 2 | 4 | 0x2000));  // space, Tab, Return, comma
  const std::vector<KeyDownEvent> chords{
      {key::kSpace, modifier::kCommand, u" "},
      {key::kReturn, modifier::kCommand, u"\r"},
      {key::kTab, modifier::kOption, u"\t"},
      {key::kKeypadEnter, modifier::kOption, u"\r"},
      {key::kSpace, modifier::kControl, u" "},
      {43, modifier::kCommand | modifier::kShift, u","},
      {key::kReturn, modifier::kShift, u"\r"},
      {key::kTab, modifier::kShift, u"\t"},
      {0, modifier::kOption, u""},
  };
  for (const auto& chord : chords) {
    desktop.type(u"sig");
    EXPECT_FALSE(monitor.handleKeyDown(chord)) << chord.keyCode;
    EXPECT_EQ(monitor.typedText(), u"") << chord.keyCode;
  }
  // Shift is part of how a space or a comma is typed on some keyboards; AltGr has no flag.
  desktop.type(u"sig");
  EXPECT_TRUE(monitor.handleKeyDown({key::kSpace, modifier::kShift, u" "}));
  desktop.queue.settle();
  desktop.type(u"sig");
  EXPECT_TRUE(monitor.handleKeyDown({43, modifier::kShift, u","}));
}

TEST_F(MonitorTest, TheKeypadsEnterStartsALineAsReturnDoes) {
  add(u"sig", u"S");
  settings.setExpandAbbreviationWithinWord(false);
  desktop.type(u"a");
  desktop.press(key::kKeypadEnter, 0, u"\r");
  desktop.typeAndWait(u"sig ");
  EXPECT_EQ(desktop.text(), u"a\rS ");
}

TEST_F(MonitorTest, OnlyAKeyThatTypesTextIsALastSymbol) {
  const auto snippet = add(u"sig", u"S");
  useLastSymbol();
  const auto folder = addFolder(ExpansionBehavior::Disabled, *snippet);
  desktop.type(u"sigx");
  folder->setExpansionBehavior(static_cast<std::int64_t>(ExpansionBehavior::AllApplications));
  desktop.press(key::kBackspace, 0, u"\x7f");
  desktop.press(200, 0, u"");  // a volume key
  desktop.queue.settle();
  EXPECT_EQ(desktop.text(), u"sig");
}

TEST_F(MonitorTest, TheLastSymbolExpandsAndNeverReachesTheApplication) {
  add(u"sig", u"Kind regards");
  useLastSymbol();
  desktop.type(u"sig");
  EXPECT_EQ(desktop.text(), u"si");
  EXPECT_EQ(monitor.typedText(), u"sig");
  desktop.queue.settle();
  EXPECT_EQ(desktop.text(), u"Kind regards");
  // The paste chord, which holds Command, has emptied it.
  EXPECT_EQ(monitor.typedText(), u"");
}

TEST_F(MonitorTest, WithinAWordTheShortestTailWins) {
  add(u"sig", u"[sig]");
  desktop.typeAndWait(u"xsig ");
  EXPECT_EQ(desktop.text(), u"x[sig] ");
  add(u"g", u"[g]");
  desktop.typeAndWait(u"xsig ");
  EXPECT_EQ(desktop.text(), u"x[sig] xsi[g] ");
  // The whole of what was typed comes before any tail.
  desktop.typeAndWait(u"sig ");
  EXPECT_EQ(desktop.text(), u"x[sig] xsi[g] [sig] ");
}

TEST_F(MonitorTest, WithinAWordIsASetting) {
  add(u"sig", u"[sig]");
  settings.setExpandAbbreviationWithinWord(false);
  desktop.typeAndWait(u"xsig sig ");
  EXPECT_EQ(desktop.text(), u"xsig [sig] ");
}

TEST_F(MonitorTest, TailsReachTo29CharactersAndCountCharactersAgainstUnits) {
  const std::u16string longest(29, u'a');
  const std::u16string tooLong(30, u'b');
  add(longest, u"A");
  add(tooLong, u"B");
  desktop.typeAndWait(u"x" + longest + u" x" + tooLong + u" ");
  EXPECT_EQ(desktop.text(), u"xA x" + tooLong + u" ");

  // One emoji is two units: the tail of depth 1 begins one unit earlier and holds two letters.
  const auto match = [&](std::u16string_view typed, std::size_t count) {
    return monitor.findSnippet(typed, typed, count, true, 1).matchedText;
  };
  add(u"ab", u"AB");
  EXPECT_EQ(match(u"\U0001F600ab", 3), u"ab");
  add(u"b", u"B");
  EXPECT_EQ(match(u"\U0001F600ab", 3), u"ab");
  EXPECT_EQ(match(u"xab", 3), u"b");
}

TEST_F(MonitorTest, WhateverBreaksTheTypingPreventsTheExpansion) {
  add(u"sig", u"S");
  auto& other = desktop.launch("org.example.Other");
  auto& editor = desktop.launch("org.example.Editor2");
  const std::vector<std::function<void()>> interruptions = {
      [&] { desktop.clickMouse(); },
      [&] { desktop.press(key::kLeftArrow, 0, {kLeftArrowCharacter}); },
      [&] { desktop.press(key::kHome, 0, {kHomeCharacter}); },
      [&] { desktop.press(0, modifier::kCommand, u"c"); },
      [&] { desktop.press(0, 0, u"\u00A0"); },
      [&] {
        desktop.activate(&other);
        desktop.type(u"x");
        desktop.activate(&editor);
      },
  };
  for (const auto& interrupt : interruptions) {
    desktop.type(u"s");
    interrupt();
    desktop.typeAndWait(u"ig ");
    EXPECT_EQ(editor.text.find(u'S'), std::u16string::npos);
  }
}

TEST_F(MonitorTest, BackspaceTakesBackOneCharacter) {
  add(u"sig", u"S");
  desktop.typeAndWait(u"\bsix\bg ");
  EXPECT_EQ(desktop.text(), u"S ");
}

TEST_F(MonitorTest, NothingExpandsInExcludedApplicationsOrOurOwn) {
  const auto snippet = add(u"sig", u"S");
  addApp("org.example.Game", AppType::Excluded);
  const auto folder = addFolder(ExpansionBehavior::OnlyTheseApplications, *snippet);
  folder->addAllowedApp(*addApp("org.example.Game", AppType::Allowed));
  folder->addAllowedApp(*addApp("org.example.Mail", AppType::Allowed));
  addApp("org.example.Mail", AppType::Blocked);  // another kind of rule
  for (const auto& [application, expected] : std::vector<std::pair<std::string, std::u16string>>{
           {"org.example.Game", u"sig "}, {"org.quorlo.Quorlo", u"sig "}, {"org.example.Mail", u"S "}}) {
    auto& front = desktop.launch(application);
    desktop.typeAndWait(u"sig ");
    EXPECT_EQ(front.text, expected) << application;
  }
  // What is typed there is as if it had not been: the word begun before goes on.
  auto& mail = desktop.launch("org.example.Mail");
  desktop.type(u"si");
  desktop.launch("org.quorlo.Quorlo");
  desktop.type(u"x");
  desktop.activate(&mail);
  desktop.typeAndWait(u"g ");
  EXPECT_EQ(mail.text, u"S ");
}

TEST_F(MonitorTest, TheFolderDecidesWhereItsSnippetsExpand) {
  const auto snippet = add(u"sig", u"S");
  const auto typesIn = [&](const std::string& application) {
    auto& front = desktop.launch(application);
    desktop.typeAndWait(u"sig ");
    return front.text == u"S ";
  };
  const auto folder = addFolder(ExpansionBehavior::AllApplications, *snippet);
  folder->addBlockedApp(*addApp("mail", AppType::Blocked));
  folder->addAllowedApp(*addApp("code", AppType::Allowed));
  const auto expandsIn = [&](std::int64_t behavior) {
    folder->setExpansionBehavior(behavior);
    return std::string(typesIn("mail") ? "mail " : "") + (typesIn("code") ? "code " : "") +
           (typesIn("term") ? "term " : "");
  };
  EXPECT_EQ(expandsIn(0), "mail code term ");
  EXPECT_EQ(expandsIn(10), "code term ");
  EXPECT_EQ(expandsIn(20), "code ");
  EXPECT_EQ(expandsIn(30), "");
  EXPECT_EQ(expandsIn(7), "");  // no behaviour at all
  // An application that nothing identifies is under no rule.
  auto& nameless = desktop.launch(std::nullopt);
  desktop.typeAndWait(u"sig ");
  EXPECT_EQ(nameless.text, u"S ");
}

TEST_F(MonitorTest, AForbiddenExpansionLeavesTheBufferAsItWas) {
  const auto snippet = add(u"sig", u"S");
  addFolder(ExpansionBehavior::Disabled, *snippet);
  desktop.typeAndWait(u"sig ");
  EXPECT_EQ(monitor.typedText(), u"sig");
}

TEST_F(MonitorTest, TrashedAndSharedSnippetsNeverExpand) {
  add(u"one", u"1")->moveToTrash();
  const auto shared = add(u"two", u"2");
  addFolder(ExpansionBehavior::AllApplications, *shared)
      ->setSourceType(static_cast<std::int64_t>(SourceType::Public));
  desktop.typeAndWait(u"one two ");
  EXPECT_EQ(desktop.text(), u"one two ");
}

TEST_F(MonitorTest, PostedKeysChangeTheBufferButNeverExpand) {
  add(u"sig", u"S");
  const KeyDownEvent space{key::kSpace, 0, u" ", KeyDownEvent::Origin::posted};
  desktop.type(u"sig");
  EXPECT_FALSE(monitor.handleKeyDown(space));
  EXPECT_EQ(monitor.typedText(), u"");
  useLastSymbol();
  desktop.type(u"si");
  EXPECT_FALSE(monitor.handleKeyDown({0, 0, u"g", KeyDownEvent::Origin::posted}));
}

TEST_F(MonitorTest, NothingExpandsAndNothingIsRememberedWhereSomethingStandsAgainstIt) {
  add(u"brb", u"be right back");
  useLastSymbol();
  desktop.typeAndWait(u"br");
  desktop.setObstacle(TypingObstacle::passwordField);
  desktop.typeAndWait(u"b brb");
  EXPECT_EQ(desktop.text(), u"brb brb");
  EXPECT_EQ(monitor.typedText(), u"");
  desktop.setObstacle({});
  desktop.typeAndWait(u"b brb");
  EXPECT_EQ(desktop.text(), u"brb brbb be right back");
}

TEST_F(MonitorTest, KeysThatCompleteNothingPassUnaskedAndCountForTheNextOneThatMay) {
  add(u"sig", u"S");
  desktop.type(u"a");
  desktop.typeAndWait(u"bxsx\big ");
  EXPECT_EQ(desktop.text(), u"abxS ");
  EXPECT_EQ(desktop.keysAskedAbout(), 2) << "the first and the delimiter";
  // The offer to take that back is for the very next key.
  desktop.typeAndWait(u"\b\bsi");
  EXPECT_EQ(desktop.text(), u"abxsigsi");
  const auto asked = desktop.keysAskedAbout();
  settings.setAbbreviationDelimiterKey(DelimiterKeys(0x10000));
  desktop.typeAndWait(u"g.");
  EXPECT_EQ(desktop.text(), u"abxsigS.");
  EXPECT_EQ(desktop.keysAskedAbout(), asked + 2) << "the setting took effect at once";
}

TEST_F(MonitorTest, KeysThatPassedUnaskedCountForThePlaceTheyWereTypedIn) {
  add(u"sig", u"S");
  auto& editor = desktop.front();
  auto& other = desktop.launch("other");
  const auto typeWithBreak = [&](const std::function<void()>& interrupt) {
    desktop.activate(&editor);
    desktop.clickMouse();
    editor.clear();
    desktop.type(u"s");
    desktop.type(u"i");  // unasked
    interrupt();
    desktop.activate(&editor);
    desktop.typeAndWait(u"g ");
    return editor.text;
  };
  EXPECT_EQ(typeWithBreak([] {}), u"S ");
  EXPECT_EQ(typeWithBreak([&] { desktop.clickMouse(); }), u"sig ");
  EXPECT_EQ(typeWithBreak([&] { desktop.typeUnseen(u"x\b"); }), u"sig ");
  EXPECT_EQ(typeWithBreak([&] {
              desktop.activate(&other);
              desktop.type(u"x");
            }),
            u"sig ");
  EXPECT_EQ(typeWithBreak([&] {
              desktop.setObstacle(TypingObstacle::passwordField);
              desktop.type(u"x\b");
              desktop.setObstacle({});
            }),
            u"sig ");
  EXPECT_EQ(typeWithBreak([&] { desktop.activate(&other); }), u"S ") << "nothing was typed there";
}

TEST_F(MonitorTest, AFailingLookupIsLoggedAndTheKeyPasses) {
  struct Failing : ExpansionLookup {
    Result<std::shared_ptr<QLSnippet>> liveSnippet(std::u16string_view) const override {
      return Error{"disk on fire"};
    }
    Result<bool> hasApp(std::string_view, std::int64_t) const override { return Error{"disk on fire"}; }
  } failing;
  AbbreviationsMonitor broken{{desktop.queue, desktop, desktop, desktop, desktop, settings, accessibility,
                               persistence, failing, desktop, paste, undo}};
  std::vector<std::string> lines;
  const auto log = redirectLog([&](LogLevel, std::string_view line) { lines.emplace_back(line); });
  broken.handleKeyDown({0, 0, u"s", KeyDownEvent::Origin::keyboard});
  EXPECT_FALSE(broken.handleKeyDown({key::kSpace, 0, u" ", KeyDownEvent::Origin::keyboard}));
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0], "ERROR: #23854; Couldn't fetch Snippet. disk on fire");
}

TEST_F(MonitorTest, MonitoringFollowsTheSetting) {
  EXPECT_TRUE(desktop.hasTap());
  EXPECT_TRUE(desktop.isWatchingMouse());
  settings.setAbbreviationsEnabled(false);
  EXPECT_FALSE(desktop.hasTap());
  EXPECT_FALSE(desktop.isWatchingMouse());
  // Another process switches it on.
  defaults.changeFromElsewhere(DefaultsDomain::appGroup, "AbbreviationsEnabled", true);
  EXPECT_TRUE(desktop.hasTap());
}

TEST_F(MonitorTest, ATapDisabledByTimeoutIsEnabledAgain) {
  std::vector<std::string> lines;
  const auto log = redirectLog([&](LogLevel, std::string_view line) { lines.emplace_back(line); });
  desktop.timeOutTap();
  EXPECT_TRUE(desktop.isTapEnabled());
  EXPECT_EQ(lines, std::vector<std::string>{"ERROR: #4ughugir - kCGEventTapDisabledByTimeout"});
  EXPECT_EQ(AbbreviationsMonitor::eventTapCallback(TapEventType::keyDown, nullptr, &monitor),
            TapVerdict::pass);
  AbbreviationsMonitor::eventTapCallback(TapEventType::keyDown, nullptr, nullptr);
  EXPECT_EQ(lines.back(), "ERROR: #srgojKk");
}

TEST_F(MonitorTest, KeysThatPassUnseenSeparateWhatIsTypedAroundThem) {
  const auto typeUnseen = [&] { desktop.typeUnseen(u"x"); };
  const auto timeOut = [&] { desktop.timeOutTap(); };
  for (const auto& interrupt : std::initializer_list<std::function<void()>>{typeUnseen, timeOut}) {
    desktop.type(u"s");
    interrupt();
    desktop.typeAndWait(u"ig ");
    EXPECT_TRUE(desktop.text().ends_with(u"ig ")) << "\"sig\" does not stand there";
  }
}

TEST_F(MonitorTest, WithoutPermissionTheSwitchGoesOffAndTheUserIsTold) {
  settings.setAbbreviationsEnabled(false);
  desktop.grantTrust(false);
  std::vector<std::string> lines;
  const auto log = redirectLog([&](LogLevel, std::string_view line) { lines.emplace_back(line); });
  settings.setAbbreviationsEnabled(true);
  EXPECT_FALSE(settings.abbreviationsEnabled());
  EXPECT_FALSE(settings.autoPasteIsEnabled());
  EXPECT_EQ(alerts.shown.size(), 1U);
  EXPECT_FALSE(desktop.hasTap());
  EXPECT_FALSE(desktop.isWatchingMouse());
  EXPECT_EQ(std::ranges::count(lines,
                               "ERROR #sgikiuu - Unable to invoke CGEvent.tapCreate. Please enable "
                               "Accessibility."),
            1);
}

TEST_F(MonitorTest, ATapThatFailsDespitePermissionIsLogged) {
  settings.setAbbreviationsEnabled(false);
  desktop.refuseTaps(true);
  std::vector<std::string> lines;
  const auto log = redirectLog([&](LogLevel, std::string_view line) { lines.emplace_back(line); });
  settings.setAbbreviationsEnabled(true);
  EXPECT_EQ(lines.back(), "ERROR: #rfkKFKF");
  EXPECT_TRUE(settings.abbreviationsEnabled());
}

}  // namespace
}  // namespace quorlo
