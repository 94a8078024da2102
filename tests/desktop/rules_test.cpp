// Where snippets may expand, and how they look there.
#include "desktop/quorlo_desktop_test.h"

namespace quorlo {
namespace {

class DesktopRulesTest : public QuorloDesktopTest {};

TEST_F(DesktopRulesTest, AnExcludedApplicationKeepsItsTextAndTheOthersExpand) {
  startQuorlo(R"({"snippets": [{"text": "be right back", "abbreviation": "brb"}],
                  "excludedApplications": ["org.xfce.mousepad"]})");
  Mousepad excluded(desktop());
  type("brb x");
  EXPECT_EQ(excluded.textOnceItIs("brb x"), "brb x");
  Featherpad other(desktop());
  type("brb x");
  EXPECT_EQ(other.textOnceItIs("be right back x"), "be right back x");
  excluded.activate();
  EXPECT_EQ(excluded.textOnceItIs("brb x"), "brb x");
}

TEST_F(DesktopRulesTest, AFolderSaysInWhichApplicationsItsSnippetsExpand) {
  startQuorlo(R"({
    "snippets": [
      {"uuid": "E", "text": "everywhere", "abbreviation": "eve"},
      {"uuid": "X", "text": "only in xterm", "abbreviation": "onx"},
      {"uuid": "N", "text": "not in xterm", "abbreviation": "nox"},
      {"uuid": "D", "text": "nowhere", "abbreviation": "now"}],
    "folders": [
      {"title": "All", "snippets": ["E"]},
      {"title": "Only", "expansionBehavior": 20, "allowedApps": ["debian-xterm"], "snippets": ["X"]},
      {"title": "But", "expansionBehavior": 10, "blockedApps": ["debian-xterm"], "snippets": ["N"]},
      {"title": "None", "expansionBehavior": 30, "snippets": ["D"]}]})");
  Xterm xterm(desktop());
  type("onx nox now eve .");
  const std::string inXterm = "only in xterm nox now everywhere .";
  EXPECT_EQ(xterm.textOnceItIs(inXterm), inXterm);
  Mousepad editor(desktop());
  type("onx nox now eve .");
  const std::string inEditor = "onx not in xterm now everywhere .";
  EXPECT_EQ(editor.textOnceItIs(inEditor), inEditor);
}

TEST_F(DesktopRulesTest, FormattedTextKeepsItsStyleAndPlainTextTakesThatOfItsPlace) {
  startQuorlo(R"({"snippets": [
    {"text": {"string": "Hi Ada!", "runs": [{"location": 3, "length": 3, "bold": true, "color": "#cc0000ff"}]},
     "abbreviation": "hia"},
    {"text": "plain\nlines", "abbreviation": "pla"}]})",
              kLastSymbol);
  auto rich = openRichEditor();  // its own text is 20 points high
  type("hia");
  EXPECT_EQ(rich->textOnceItIs("Hi Ada!"), "Hi Ada!");
  EXPECT_NE(rich->html().find("font-weight:700; color:#cc0000;\">Ada<"), std::string::npos) << rich->html();

  rich.reset();
  rich = openRichEditor();
  type("x pla.");
  EXPECT_EQ(rich->textOnceItIs("x plain\nlines."), "x plain\nlines.");
  const auto html = rich->html();
  EXPECT_NE(html.find("font-size:20pt;\">x plain<"), std::string::npos) << html;
  EXPECT_NE(html.find("font-size:20pt;\">lines.<"), std::string::npos) << html;

  Mousepad plain(desktop());
  type("hia");
  EXPECT_EQ(plain.textOnceItIs("Hi Ada!"), "Hi Ada!");
}

TEST_F(DesktopRulesTest, TheBlanksOfFormattedTextArriveAsBlanks) {
  startQuorlo(R"({"snippets": [
    {"text": {"string": "Hi  Ada!", "runs": [{"location": 4, "length": 3, "bold": true}]},
     "abbreviation": "hia"}]})");
  const auto rich = openRichEditor();
  type("hia hia .");
  EXPECT_EQ(rich->textOnceItIs("Hi  Ada! Hi  Ada! ."), "Hi  Ada! Hi  Ada! .");
  EXPECT_EQ(rich->html().find("\u00A0"), std::string::npos) << rich->html();
}

TEST_F(DesktopRulesTest, AbbreviationsAreOffUntilTheUserSwitchesThemOnAndARunningQuorloSeesItAtOnce) {
  Mousepad editor(desktop());
  startQuorlo();
  const auto set = [&](const std::string& value) {
    runProgram(
        {.words = {QUORLO, "--abbreviations", value}, .variables = desktop().variables(), .output = {}});
  };
  set("off");
  EXPECT_TRUE(waitUntil([&] { return quorlo().log().find("Removing eventTap") != std::string::npos; }));
  type("brb x ");
  EXPECT_EQ(editor.textOnceItIs("brb x "), "brb x ");
  set("on");
  const auto watching = [&] {
    const auto log = quorlo().log();
    return log.find("Watching the keyboards.", log.find("Removing eventTap")) != std::string::npos;
  };
  EXPECT_TRUE(waitUntil(watching));
  type("brb x");
  EXPECT_EQ(editor.textOnceItIs("brb x be right back x"), "brb x be right back x");
}

}  // namespace
}  // namespace quorlo
