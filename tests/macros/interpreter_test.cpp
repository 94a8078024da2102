#include "fakes/fake_environment.h"
#include "macros/captured_log.h"
#include "macros/cut_pieces.h"
#include "macros/macro_arguments.h"
#include "macros/ql_snippet_macro_interpreter.h"
#include "macros/random_markup.h"
#include "text/utf.h"

#include <gtest/gtest.h>

#include <map>

namespace quorlo {
namespace {

using namespace std::string_literals;

std::u16string call(const std::u16string& abbreviation) {
  return u"%snippet:abbreviation=" + abbreviation + u":snippet%";
}

TextAttributes bold() {
  TextAttributes attributes;
  attributes.bold = true;
  return attributes;
}

struct Interpreter : testing::Test {
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
  FakeEnvironment environment;
  CapturedLog log;
  QLSnippetMacroInterpreter interpreter{environment, [this](const std::u16string& abbreviation) {
                                          const auto found = snippets.find(abbreviation);
                                          return found == snippets.end() ? std::nullopt
                                                                         : std::optional(found->second);
                                        }};
};

TEST_F(Interpreter, PutsSnippetsInPlaceThroughThreeLevels) {
  snippets[u"x"] = AttributedString(call(u"y"));
  snippets[u"y"] = AttributedString(u"Y");
  EXPECT_EQ(resolved(u"A " + call(u"x") + u" B " + call(u"unknown") + u"%snippet:snippet%" + call(u"y")),
            "A Y B %snippet:snippet%Y");

  snippets[u"1"] = AttributedString(u"1" + call(u"2"));
  snippets[u"2"] = AttributedString(u"2" + call(u"3"));
  snippets[u"3"] = AttributedString(u"3" + call(u"4"));
  snippets[u"4"] = AttributedString(u"4");
  EXPECT_EQ(resolved(call(u"1")), "123" + toUtf8(call(u"4")));
  EXPECT_TRUE(log.lines().empty());
  EXPECT_EQ(evaluatedText(u"123" + call(u"4")), "123");
  EXPECT_EQ(log.count("nested too deeply"), 1U);
}

TEST_F(Interpreter, NeverPutsASnippetInsideItselfAndWarnsOnceForEachPlace) {
  snippets[u"self"] = AttributedString(u"<" + call(u"self") + u">");
  EXPECT_EQ(resolved(call(u"self")), "<>");
  EXPECT_EQ(resolved(u"<" + call(u"self") + u">", u"self"), "<>");
  EXPECT_EQ(log.lines(), std::vector(2, "WARNING: #4uNCEF - Discovered loop snippet reference - abort"s));

  snippets[u"a"] = AttributedString(u"a" + call(u"b"));
  snippets[u"b"] = AttributedString(u"b" + call(u"a"));
  EXPECT_EQ(resolved(call(u"a") + u" " + call(u"b")), "ab ba");
  EXPECT_EQ(log.count("#4uNCEF"), 4U);
}

TEST_F(Interpreter, PutsASnippetTwiceSideBySide) {
  snippets[u"sig"] = AttributedString(u"Ann");
  snippets[u"both"] = AttributedString(call(u"sig") + u"&" + call(u"sig"));
  EXPECT_EQ(resolved(call(u"sig") + call(u"sig") + u" " + call(u"both") + call(u"sig")), "AnnAnn Ann&AnnAnn");
  EXPECT_TRUE(log.lines().empty());
}

TEST_F(Interpreter, SeesALoopInAMacroThatJoinsPartsOfSeveralSnippets) {
  snippets[u"half"] = AttributedString(u"%snippet:abbreviation=whole");
  snippets[u"whole"] = AttributedString(call(u"half") + u":snippet%");
  EXPECT_EQ(resolved(call(u"whole")), "");
  EXPECT_EQ(log.count("#4uNCEF"), 1U);
}

TEST_F(Interpreter, KeepsTheLookAndTheMarksOfNestedTextsAndLeavesNoneOfItsOwn) {
  auto marked = bold();
  marked.custom["snippetPath"] = "99999999999999999999";
  marked.custom["other"] = "kept";
  auto kept = bold();
  kept.custom["other"] = "kept";
  AttributedString inner(u"in ");
  inner.append(u"bold", marked);
  snippets[u"x"] = inner;
  AttributedString expected(u"in ");
  expected.append(u"bold", kept);
  expected.append(u" out");
  EXPECT_EQ(interpreter.resolveSnippetMacros(AttributedString(call(u"x") + u" out"), u""), expected);
  EXPECT_EQ(interpreter.resolveSnippetMacros(AttributedString(u"x", marked), u""),
            AttributedString(u"x", kept));
}

TEST_F(Interpreter, LeavesOutWhatWouldGrowBeyondMeasure) {
  snippets[u"x"] = AttributedString(std::u16string(kLongestResolvedText / 4, u'x'));
  std::u16string text;
  for (int i = 0; i < 9; ++i) text += call(u"x");
  EXPECT_EQ(resolved(text).size(), kLongestResolvedText / 4 * 3);
  EXPECT_EQ(log.count("too long together"), 1U);
}

TEST_F(Interpreter, EvaluatesEachTypeToItsDefault) {
  const std::pair<std::u16string, std::string> cases[] = {
      {u"a%textfield:name=N:default=Ann(!(colon)!)\nBob:textfield%b", "aAnn:\nBobb"},
      {u"%textfield:textfield%", ""},
      {u"%options:name=:default=1:name0=x:name1=y:options%", "y"},
      {u"%options:name0=x:name1=y:options%", "x"},
      {u"%options:default=7:name0=x:name1=y:options%", "x"},
      {u"%options:default=-1:name0=x:options%", "x"},
      {u"%options:default=99999999999999999999:name0=x:options%", "x"},
      {u"%options:default=0:options%", ""},
      {u"%options:multiple=1:choiceType=dashedList:name0=x:options%", "- x"},
      {u"%date:dateLength=short:date%", "Unsupported macro format"},
      {u"%date:dateLength=custom:dateFormat=%yyyy:timeLength=none:math=-3:mathType=years:date%", "2020"},
      {u"%date:x 50 % %unknown:unknown%", "%date:x 50 % %unknown:unknown%"},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(evaluatedText(text), expected) << toUtf8(text);
}

TEST_F(Interpreter, PutsAnswersInPlaceOfMacrosWithoutReadingThemAgain) {
  const std::u16string text =
      u"%textfield:name=Who:textfield% and %textfield:name=:default=d:textfield%%textfield:name=:textfield% "
      u"%textfield:name=Who:default=other:textfield%, "
      u"%options:name=Who:multiple=1:separator=+:name0=x:name1=y:options%|"
      u"%options:name=Who:multiple=1:choiceType=bulletedList:name0=x:options%|"
      u"%date:dateLength=custom:dateFormat=%yyyy:timeLength=none:math=1:mathType=years:showPicker=1:date%|"
      u"%date:dateLength=custom:dateFormat=%yyyy:timeLength=none:date%";
  const auto fields = fillInMacros(text).fields;
  ASSERT_EQ(fields.size(), 5U);
  EXPECT_EQ(fields[0].name, u"Who");
  EXPECT_EQ(fields[1].defaultText, u"d");
  EXPECT_EQ(fields[2].name, u"");
  EXPECT_EQ(fields[3].options.entries, (std::vector<std::u16string>{u"x", u"y"}));
  EXPECT_TRUE(fields[3].options.multiple);
  EXPECT_EQ(fields[4].type, MacroType::date);

  const FillInAnswers answers = {u"%cursor%", std::nullopt, u"b", std::vector<std::u16string>{u"x", u"y"},
                                 Moment(std::chrono::sys_days(std::chrono::year(1960) / 7 / 1))};
  const auto result = evaluated(text, answers);
  EXPECT_EQ(toUtf8(result.text.string()), "%cursor% and db %cursor%, x+y|• x\n• y|1960|2023");
  EXPECT_FALSE(result.cursorRange);
  // An answer of the wrong kind counts as none.
  EXPECT_EQ(evaluatedText(u"%textfield:default=d:textfield%", {Moment()}), "d");
}

TEST_F(Interpreter, ReadsLongOptionListsAsASearchForEachEntryWould) {
  const auto list = optionList(
      u"%options:name1=one:xname0=zero(!(percent)!):name0=later:name01=no:name2=:name4=gap:options%");
  EXPECT_EQ(list.entries, (std::vector<std::u16string>{u"zero%", u"one", u""}));
  Random random(4);
  for (int i = 0; i < 2000; ++i) {
    std::u16string macro;
    for (auto count = pick(random, 12); count > 0; --count) {
      static constexpr std::u16string_view kPieces[] = {u"name", u"0",        u"1",       u"=",
                                                        u":",    u"name0=a:", u"name1=b:"};
      macro += kPieces[pick(random, std::size(kPieces))];
    }
    std::vector<std::u16string> expected;
    while (const auto entry = valueForArgument(u"name" + toUtf16(std::to_string(expected.size())), macro)) {
      expected.push_back(*entry);
    }
    EXPECT_EQ(optionList(macro).entries, expected) << toUtf8(macro);
  }
}

TEST_F(Interpreter, TakesTheLookOfAMacrosFirstCharacter) {
  AttributedString text(u"plain ");
  text.append(u"%textfield", bold());
  text.append(u":default=Ann:textfield% end");
  AttributedString expected(u"plain ");
  expected.append(u"Ann", bold());
  expected.append(u" end");
  EXPECT_EQ(interpreter.evaluate(text, kAllMacroTypes).text, expected);
}

TEST_F(Interpreter, ReplacesOnlyTheAskedTypes) {
  const auto result =
      interpreter.evaluate(AttributedString(u"%textfield:default=a:textfield%%cursor%"), kFillInMacroTypes);
  EXPECT_EQ(result.text.string(), u"a%cursor%");
  EXPECT_FALSE(result.cursorRange);
}

TEST_F(Interpreter, PutsTheClipboardIntoAPreview) {
  const AttributedString text(u"[%clipboard%|%clipboard:pasteText=1:clipboard%]");
  AttributedString expected(u"[");
  expected.append(u"rich", bold());
  expected.append(u"|rich]");
  const auto result = interpreter.evaluate(text, kAllMacroTypes, {}, AttributedString(u"rich", bold()));
  EXPECT_EQ(result.text, expected);
  EXPECT_TRUE(result.keys.empty());
}

std::vector<std::string> piecesOf(const PreparedSnippet& prepared) {
  std::vector<std::string> pieces;
  for (const auto& piece : prepared.pieces) pieces.push_back(toUtf8(piece.string()));
  return pieces;
}

TEST_F(Interpreter, CutsTheTextAtTheKeysToPress) {
  const auto prepared = cutPieces(evaluated(
      u"%specialKey:value=tab:specialKey%🙂%clipboard%%clipboard:pasteText=1:clipboard%b%cursor%cd"
      u"%specialKey:code=8:modFlags=1048576:specialKey%e%specialKey:value=return:specialKey%"));
  EXPECT_EQ(prepared.snippetText.string(), u"🙂bcde");
  EXPECT_EQ(piecesOf(prepared), (std::vector<std::string>{"", "🙂", "", "bcd", "e"}));
  EXPECT_EQ(prepared.keys, (std::vector<KeyStep>{{{0, 0}, "tab"},
                                                 {{2, 0}, "clipboard"},
                                                 {{2, 0}, "clipboardText"},
                                                 {{5, 0}, "combi", KeyCombination{8, modifier::kCommand}},
                                                 {{6, 0}, "return"}}));
  EXPECT_EQ(prepared.cursorRange, (TextRange{3, 0}));
  EXPECT_EQ(prepared.cursorPiece, 3U);
}

TEST_F(Interpreter, TellsOnWhichSideOfAKeyTheCursorStands) {
  const auto cursorPiece = [&](std::u16string text) { return cutPieces(evaluated(text)).cursorPiece; };
  EXPECT_EQ(cursorPiece(u"a%cursor%%specialKey:value=tab:specialKey%b"), 0U);
  EXPECT_EQ(cursorPiece(u"a%specialKey:value=tab:specialKey%%cursor%b"), 1U);
  EXPECT_EQ(cutPieces(evaluated(u"%cursor%ab%cursor%c")).cursorRange, (TextRange{2, 0}));
  EXPECT_EQ(piecesOf(cutPieces(evaluated(u""))), std::vector<std::string>{""});
}

TEST_F(Interpreter, RemovesKeysThatNameNone) {
  for (const std::u16string arguments :
       {u"", u"code=x", u"code=-1", u"code=65536", u"modFlags=1", u"value=combi"}) {
    const auto result = evaluated(u"a%specialKey:" + arguments + u":specialKey%b");
    EXPECT_EQ(result.text.string(), u"ab") << toUtf8(arguments);
    EXPECT_TRUE(result.keys.empty()) << toUtf8(arguments);
  }
  EXPECT_EQ(log.count("A special key names no key"), 6U);
  // What presses the keys knows their names and speaks up about others.
  EXPECT_EQ(evaluated(u"%specialKey:value=Hyper:specialKey%").keys,
            (std::vector<KeyStep>{{{0, 0}, "Hyper"}}));
  EXPECT_EQ(evaluated(u"%specialKey:code=8:modFlags=-1:specialKey%").keys[0].combination,
            (KeyCombination{8, 0}));
}

TEST_F(Interpreter, KeepsEveryOrdinaryCharacterOfAnyText) {
  Random random(5);
  for (int i = 0; i < 1000; ++i) {
    snippets[u"a"] = AttributedString(randomMarkup(random, 6), randomAttributes(random));
    const AttributedString text(randomMarkup(random, 20), randomAttributes(random));
    const auto resolvedText = interpreter.resolveSnippetMacros(text, u"");
    const auto result = interpreter.evaluate(resolvedText, kAllMacroTypes);
    const auto prepared = cutPieces(result);
    AttributedString joined;
    for (const auto& piece : prepared.pieces) joined.append(piece);
    EXPECT_EQ(joined, prepared.snippetText);
    EXPECT_GE(prepared.pieces.size(), prepared.keys.size());
    EXPECT_LE(prepared.cursorPiece, prepared.keys.size());
    if (readableMacros(resolvedText.string()).empty()) {
      EXPECT_EQ(result.text, resolvedText);
    }
  }
}

}  // namespace
}  // namespace quorlo
