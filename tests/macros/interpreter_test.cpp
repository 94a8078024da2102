#include "fakes/fake_environment.h"
#include "macros/captured_log.h"
#include "macros/cut_pieces.h"
#include "macros/ql_snippet_macro_interpreter.h"
#include "text/utf.h"

#include <gtest/gtest.h>

#include <map>

namespace quorlo {
namespace {

using namespace std::string_literals;

std::u16string call(const std::u16string& abbreviation) {
  return u"%snippet:abbreviation=" + abbreviation + u":snippet%";
}

AttributedString bold(std::u16string text, std::map<std::string, std::string> marks = {}) {
  TextAttributes attributes;
  attributes.bold = true;
  attributes.custom = std::move(marks);
  return AttributedString(std::move(text), attributes);
}

AttributedString joined(AttributedString text, const AttributedString& more) {
  text.append(more);
  return text;
}

struct Interpreter : testing::Test {
  void add(const std::u16string& abbreviation, std::u16string text) {
    snippets[abbreviation] = AttributedString(std::move(text));
  }

  std::string resolved(std::u16string text, const std::u16string& abbreviation = u"") {
    return toUtf8(interpreter.resolveSnippetMacros(AttributedString(std::move(text)), abbreviation).string());
  }

  EvaluatedText evaluated(std::u16string text, FillInAnswers answers = {}) {
    return interpreter.evaluate(AttributedString(std::move(text)), kAllMacroTypes, std::move(answers));
  }

  std::string evaluatedText(std::u16string text, FillInAnswers answers = {}) {
    return toUtf8(evaluated(std::move(text), std::move(answers)).text.string());
  }

  std::map<std::u16string, AttributedString> snippets;
  FakeEnvironment environment;  // in November 2023
  CapturedLog log;
  QLSnippetMacroInterpreter interpreter{environment, [this](const std::u16string& abbreviation) {
                                          const auto found = snippets.find(abbreviation);
                                          return found == snippets.end() ? std::nullopt
                                                                         : std::optional(found->second);
                                        }};
};

TEST_F(Interpreter, PutsSnippetsInPlaceThroughThreeLevels) {
  add(u"1", u"1" + call(u"2"));
  add(u"2", u"2" + call(u"3"));
  add(u"3", u"3" + call(u"4"));
  add(u"4", u"4");
  EXPECT_EQ(resolved(u"A " + call(u"3") + u" B" + call(u"unknown") + u"%snippet:snippet%"),
            "A 34 B%snippet:snippet%");
  EXPECT_EQ(resolved(call(u"1")), "123" + toUtf8(call(u"4")));
  EXPECT_TRUE(log.lines().empty());
  EXPECT_EQ(evaluatedText(u"123" + call(u"4")), "123");
  EXPECT_EQ(log.count("nested too deeply"), 1U);
}

TEST_F(Interpreter, NeverPutsASnippetInsideItselfAndWarnsOnceForEachPlace) {
  add(u"self", u"<" + call(u"self") + u">");
  EXPECT_EQ(resolved(call(u"self")), "<>");
  EXPECT_EQ(resolved(u"<" + call(u"self") + u">", u"self"), "<>");
  EXPECT_EQ(log.lines(), std::vector(2, "WARNING: #4uNCEF - Discovered loop snippet reference - abort"s));

  add(u"a", u"a" + call(u"b"));
  add(u"b", u"b" + call(u"a"));
  EXPECT_EQ(resolved(call(u"a") + u" " + call(u"b")), "ab ba");  // side by side is no loop
  EXPECT_EQ(log.count("#4uNCEF"), 4U);

  // A macro whose parts come from several snippets stands inside each of them.
  add(u"half", u"%snippet:abbreviation=whole");
  add(u"whole", call(u"half") + u":snippet%");
  EXPECT_EQ(resolved(call(u"whole")), "");
  EXPECT_EQ(log.count("#4uNCEF"), 5U);
}

TEST_F(Interpreter, KeepsTheLookAndTheMarksOfNestedTextsAndLeavesNoneOfItsOwn) {
  const auto forged = bold(u"b", {{"snippetPath", "99999999999999999999"}, {"other", "kept"}});
  snippets[u"x"] = joined(AttributedString(u"in "), forged);
  const auto kept = bold(u"b", {{"other", "kept"}});
  EXPECT_EQ(interpreter.resolveSnippetMacros(joined(forged, AttributedString(call(u"x") + u" out")), u""),
            joined(joined(joined(kept, AttributedString(u"in ")), kept), AttributedString(u" out")));
}

TEST_F(Interpreter, LeavesOutWhatWouldGrowBeyondMeasure) {
  add(u"x", std::u16string(kLongestResolvedText / 4, u'x'));
  std::u16string text;
  for (int i = 0; i < 9; ++i) text += call(u"x");
  EXPECT_EQ(resolved(text).size(), kLongestResolvedText / 4 * 3);
  EXPECT_EQ(log.count("too long together"), 1U);
}

TEST_F(Interpreter, EvaluatesEachTypeToItsDefault) {
  const std::pair<std::u16string, std::string> cases[] = {
      {u"a%textfield:name=N:default=Ann(!(colon)!)\nBob:textfield%b", "aAnn:\nBobb"},
      {u"%options:name=:default=1:name0=x:name1=y:options%", "y"},
      {u"%options:default=7:name0=x:name1=y:options%", "x"},
      {u"%options:multiple=1:choiceType=dashedList:name0=x:options%", "- x"},
      {u"%date:dateLength=custom:dateFormat=%yyyy:timeLength=none:math=-3:mathType=years:date%", "2020"},
      {u"%date:x 50 % %unknown:unknown%", "%date:x 50 % %unknown:unknown%"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(evaluatedText(text), expected) << toUtf8(text);
}

TEST_F(Interpreter, PutsAnswersInPlaceOfMacrosWithoutReadingThemAgain) {
  const std::u16string text =
      u"%textfield:name=Who:textfield% %textfield:name=:default=d:textfield%%textfield:name=:textfield% "
      u"%textfield:name=Who:default=other:textfield% "
      u"%options:name=Who:multiple=1:separator=+:name0=x:name1=y:options%|"
      u"%options:name=Who:multiple=1:choiceType=bulletedList:name0=x:options%|"
      u"%date:dateLength=custom:dateFormat=%yyyy:timeLength=none:math=1:mathType=years:showPicker=1:date%|"
      u"%date:dateLength=custom:dateFormat=%yyyy:timeLength=none:date%";
  const auto fields = fillInMacros(text).fields;
  ASSERT_EQ(fields.size(), 5U);
  EXPECT_EQ(fields[0].name, u"Who");
  EXPECT_EQ(fields[1].defaultText, u"d");

  const Moment picked(std::chrono::sys_days(std::chrono::year(1960) / 7 / 1));
  const std::vector<std::u16string> chosen = {u"x", u"y"};
  const auto result = evaluated(text, {u"%cursor%", std::nullopt, u"b", chosen, picked});
  EXPECT_EQ(toUtf8(result.text.string()), "%cursor% db %cursor% x+y|• x\n• y|1960|2023");
  EXPECT_FALSE(result.cursorRange);
  // An answer of the wrong kind counts as none.
  EXPECT_EQ(evaluatedText(u"%textfield:default=d:textfield%", {picked}), "d");
}

TEST_F(Interpreter, FindsTheEntriesOfAListByTheirNumbers) {
  EXPECT_EQ(optionList(u"%options:name1=one:xname0=zero(!(percent)!):name0=later:name01=no:name2=:name4=gap:")
                .entries,
            (std::vector<std::u16string>{u"zero%", u"one", u""}));

  std::u16string damaged;  // where each value holds all that follow
  for (int i = 0; i < 2000; ++i) damaged += u"name" + toUtf16(std::to_string(i)) + u"=";
  std::size_t length = 0;
  for (const auto& entry : optionList(u"%options:" + damaged + u":options%").entries) length += entry.size();
  EXPECT_GT(length, damaged.size() / 2);
  EXPECT_LE(length, damaged.size() + 20);
}

TEST_F(Interpreter, TakesTheLookOfAMacrosFirstCharacterAndOnlyTheAskedTypes) {
  const auto text = joined(bold(u"%textfield"), AttributedString(u":default=Ann:textfield%, %cursor%"));
  const auto result = interpreter.evaluate(text, kFillInMacroTypes);
  EXPECT_EQ(result.text, joined(bold(u"Ann"), AttributedString(u", %cursor%")));
  EXPECT_FALSE(result.cursorRange);
}

TEST_F(Interpreter, PutsTheClipboardIntoAPreview) {
  const AttributedString text(u"%clipboard%%clipboard:pasteText=1:clipboard%");
  const auto result = interpreter.evaluate(text, kAllMacroTypes, {}, bold(u"rich"));
  EXPECT_EQ(result.text, joined(bold(u"rich"), AttributedString(u"rich")));
  EXPECT_TRUE(result.keys.empty());
}

TEST_F(Interpreter, CutsTheTextAtTheKeysToPress) {
  const auto prepared = cutPieces(evaluated(
      u"%specialKey:value=tab:specialKey%🙂%clipboard%%clipboard:pasteText=1:clipboard%b%cursor%cd"
      u"%specialKey:code=8:modFlags=1048576:specialKey%e%specialKey:value=return:specialKey%"));
  std::vector<std::u16string> pieces;
  for (const auto& piece : prepared.pieces) pieces.push_back(piece.string());
  EXPECT_EQ(pieces, (std::vector<std::u16string>{u"", u"🙂", u"", u"bcd", u"e"}));
  EXPECT_EQ(prepared.snippetText.string(), u"🙂bcde");
  EXPECT_EQ(prepared.keys, (std::vector<KeyStep>{{{0, 0}, "tab"},
                                                 {{2, 0}, "clipboard"},
                                                 {{2, 0}, "clipboardText"},
                                                 {{5, 0}, "combi", KeyCombination{8, modifier::kCommand}},
                                                 {{6, 0}, "return"}}));
  EXPECT_EQ(prepared.cursorRange, (TextRange{3, 0}));
  EXPECT_EQ(prepared.cursorPiece, 3U);
  EXPECT_EQ(cutPieces(evaluated(u"")).pieces.size(), 1U);
}

TEST_F(Interpreter, TellsOnWhichSideOfAKeyTheLastCursorStands) {
  const auto cursorPiece = [&](auto text) { return cutPieces(evaluated(text)).cursorPiece; };
  EXPECT_EQ(cursorPiece(u"a%cursor%%specialKey:value=tab:specialKey%b"), 0U);
  EXPECT_EQ(cursorPiece(u"%cursor%a%specialKey:value=tab:specialKey%%cursor%b"), 1U);
}

TEST_F(Interpreter, RemovesKeysThatNameNone) {
  for (const std::u16string arguments : {u"", u"code=x", u"code=-1", u"code=65536", u"value=combi"}) {
    const auto result = evaluated(u"a%specialKey:" + arguments + u":specialKey%b");
    EXPECT_EQ(result.text.string(), u"ab") << toUtf8(arguments);
    EXPECT_TRUE(result.keys.empty()) << toUtf8(arguments);
  }
  EXPECT_EQ(log.count("A special key names no key"), 5U);
  EXPECT_TRUE(evaluated(u"%specialKey:value=Hyper:specialKey%").keys.empty());
  EXPECT_EQ(log.count("WARNING: #sPk4unk - (5 characters)"), 1U);
}

}  // namespace
}  // namespace quorlo
