#include "macros/captured_log.h"
#include "macros/find_macros.h"
#include "macros/macro_arguments.h"
#include "macros/macro_text_attachment.h"
#include "text/utf.h"

#include <gtest/gtest.h>

#include <limits>

namespace quorlo {
namespace {

constexpr auto kEscape = Escaping::escape;

TEST(MacroMarkup, EveryTemplateIsFoundWholeInATextAndReadsAsItsType) {
  for (const auto type : kAllMacroTypes) {
    const std::u16string macro(macroTemplate(type));
    EXPECT_EQ(macroType(macro), type);
    EXPECT_EQ(findMacros(u"50 % " + macro + u" %"), (std::vector{MacroOccurrence{{5, macro.size()}, type}}));
  }
  EXPECT_EQ(macroType(u"%clipboard%%cursor%"), MacroType::cursor);
  for (const auto* none : {u"", u":", u"%:", u"%date%", u"%Date:date%", u"%cursor"}) {
    EXPECT_EQ(macroType(none), std::nullopt) << toUtf8(none);
  }
}

TEST(MacroMarkup, FindsArgumentsWhereTheirNameFirstOccurs) {
  EXPECT_EQ(valueForArgument(u"name", u"%options:name0=A:name=B:options%"), u"B");
  EXPECT_EQ(valueForArgument(u"name", u"%options:xname=A:name=B:options%"), u"A");
  EXPECT_EQ(valueForArgument(u"Name", u"%textfield:name=X:textfield%"), std::nullopt);
  EXPECT_EQ(valueForArgument(u"name", u"%textfield:name=X"), std::nullopt);
}

TEST(MacroMarkup, WritesANewArgumentInFrontAndAnOldOneInItsPlace) {
  const auto set = [](auto macro) { return setValueForArgument(u"V", u"default", macro, kEscape); };
  EXPECT_EQ(set(u"%textfield:name=X:textfield%"), u"%textfield:default=V:name=X:textfield%");
  EXPECT_EQ(set(u"%textfield:default=old:name=X:textfield%"), u"%textfield:default=V:name=X:textfield%");
  EXPECT_EQ(set(u"%textfield:default=cut off"), u"%textfield:default=V");
  EXPECT_EQ(set(u"%clipboard%"), u"%clipboard:default=V:clipboard%");
  EXPECT_EQ(set(u"no macro"), u"no macro");
}

TEST(MacroMarkup, RemovesAnArgumentWithItsSeparator) {
  EXPECT_EQ(removeArgument(u"default", u"%textfield:name=X:default=Y:textfield%"),
            u"%textfield:name=X:textfield%");
  EXPECT_EQ(removeArgument(u"ame", u"%textfield:name=X:textfield%"), std::nullopt);
  const CapturedLog log;
  EXPECT_EQ(removeArgument(u"name", u"%textfield:name=X"), std::nullopt);
  EXPECT_EQ(log.lines(), std::vector<std::string>{"WARNING: #rgjgbdd - 10 17"});
}

TEST(MacroMarkup, EscapesTheSyntaxInValuesButNotInDateFormats) {
  EXPECT_EQ(unescapeMacroValue(u"(!((!(colon)!)(!(equal)!(!(percent)!)"), u"(!(:(!(equal)!%");
  const auto macro = setValueForArgument(u"a:b=c%d", u"name", u"%date:date%", kEscape);
  EXPECT_EQ(macro, u"%date:name=a(!(colon)!)b(!(equal)!)c(!(percent)!)d:date%");
  EXPECT_EQ(valueForArgument(u"name", macro), u"a:b=c%d");
  EXPECT_EQ(setValueForArgument(u"%HH", u"timeFormat", u"%date:date%", Escaping::none),
            u"%date:timeFormat=%HH:date%");
}

TEST(MacroMarkup, ReadsBooleansByTheirFirstCharacterAndIntegersWhole) {
  for (const auto* yes : {u"1", u"9", u"yes", u"Y", u"true", u"T"}) EXPECT_TRUE(readBoolean(yes));
  for (const auto* no : {u"", u"0", u"01", u"no", u" 1", u"-1"}) EXPECT_FALSE(readBoolean(no));
  EXPECT_EQ(readInteger(u"+12"), 12);
  EXPECT_EQ(readInteger(u"9223372036854775807"), std::numeric_limits<std::int64_t>::max());
  for (const auto* none : {u"", u"+", u"--1", u"1.5", u" 1", u"٣", u"9223372036854775808"}) {
    EXPECT_EQ(readInteger(none), std::nullopt) << toUtf8(none);
  }
}

TEST(FindMacros, EndsARunAtItsNameOrAtTheNextPercentSign) {
  using Strings = std::vector<std::u16string>;
  const std::pair<std::u16string_view, Strings> cases[] = {
      {u"%", {}},
      {u"%date:dateFormat=%dd.%MM:date%", {u"%date:dateFormat=%dd.%MM:date%"}},
      // The short form has no second name, so every run ends at the next percent sign.
      {u"%clipboard%%date:dateFormat=%dd:date%", {u"%clipboard%", u"%date:dateFormat=%"}},
      {u"%clipboard%%textfield:name=50(!(percent)!):textfield%",
       {u"%clipboard%", u"%textfield:name=50(!(percent)!):textfield%"}},
      // A type that cannot be read is no macro; one inside another is part of it.
      {u"%cursors are 50%, %datebook:date%", {}},
      {u"%date %cursor% date%", {u"%cursor%"}},
      {u"%textfield:default=%cursor%:textfield%", {u"%textfield:default=%cursor%:textfield%"}},
  };
  for (const auto& [text, found] : cases) EXPECT_EQ(findMacroStrings(text), found) << toUtf8(text);
}

TEST(FindMacros, LeavesAnOpeningWithoutAnEndAndWarnsOnceForItsType) {
  const CapturedLog log;
  EXPECT_EQ(findMacroStrings(u"%date:x %date:y %cursor%"), std::vector<std::u16string>{u"%cursor%"});
  EXPECT_TRUE(findMacros(u"in the last place: %date").empty());
  EXPECT_EQ(log.lines(), std::vector<std::string>{
                             "WARNING: #3ddsdsc string may contain unsupported macros: (24 characters)"});
}

TEST(MacroTokens, StandForMacrosInTheEditorAndTurnBackIntoMarkup) {
  TextAttributes bold;
  bold.bold = true;
  AttributedString stored(u"Dear ");
  stored.append(u"%textfield:name=Who:default=:textfield%", bold);
  stored.append(u"%cursor%, see \uFFFC.");
  auto editor = toEditorText(stored);
  EXPECT_EQ(editor.text.string(), u"Dear \uFFFC\uFFFC, see \uFFFC.");
  ASSERT_EQ(editor.attachments.size(), 2U);
  auto& who = *editor.attachments[0];
  EXPECT_EQ(who.attributes(), bold);
  EXPECT_EQ(editor.attachments[1]->location(), 44U);
  EXPECT_EQ(toStoredText(editor), stored);

  // Moved and copied as an editor moves and copies text; changed through the token.
  using Change = MacroTextAttachment::Change;
  std::vector<Change> changes;
  const auto subscription = who.observe([&](Change change) { changes.push_back(change); });
  for (int i = 0; i < 2; ++i) who.setMacroString(u"%textfield:name=You:textfield%");
  who.setPreviewValue(u"Ann");
  EXPECT_EQ(changes, (std::vector{Change::macroString, Change::previewValue}));
  editor.text.insert(0, editor.text.slice({5, 1}));
  editor.text.replace({7, 1}, u"");
  EXPECT_EQ(toStoredText(editor).string(),
            u"%textfield:name=You:textfield%Dear %textfield:name=You:textfield%, see \uFFFC.");
}

TEST(MacroTokens, MarksThatNameNoTokenAreDropped) {
  for (const auto* mark : {"", "7", "-1", "1x", "99999999999999999999999"}) {
    TextAttributes marked;
    marked.custom[kMacroMark] = mark;
    EXPECT_EQ(toStoredText({AttributedString(u"\uFFFC", marked), {}}), AttributedString(u"\uFFFC"));
  }
}

}  // namespace
}  // namespace quorlo
