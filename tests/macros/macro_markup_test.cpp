#include "macros/captured_log.h"
#include "macros/find_macros.h"
#include "macros/macro_arguments.h"
#include "macros/macro_text_attachment.h"
#include "macros/random_markup.h"
#include "text/utf.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>

namespace quorlo {
namespace {

using Value = std::optional<std::u16string>;

std::vector<std::string> macroStrings(std::u16string_view text) {
  std::vector<std::string> strings;
  for (const auto& macro : findMacroStrings(text)) strings.push_back(toUtf8(macro));
  return strings;
}

TEST(MacroMarkup, EveryTemplateIsFoundWholeInATextAndReadsAsItsType) {
  for (const auto type : kAllMacroTypes) {
    const std::u16string macro(macroTemplate(type));
    EXPECT_EQ(macroTypeFromRawValue(rawValue(type)), type);
    EXPECT_EQ(macroType(macro), type);
    const auto found = findMacros(u"50 % " + macro + u" %");
    ASSERT_EQ(found.size(), 1U) << toUtf8(macro);
    EXPECT_EQ(found[0], (MacroOccurrence{{5, macro.size()}, type}));
    EXPECT_FALSE(helperText(type).empty());
  }
  EXPECT_EQ(macroTypeFromRawValue(u"textField"), std::nullopt);
  EXPECT_EQ(macroTypeFromRawValue(u"specialkey"), std::nullopt);
}

TEST(MacroMarkup, ReadsTheTypeOfShortAndFullForms) {
  EXPECT_EQ(macroType(u"%cursor%"), MacroType::cursor);
  EXPECT_EQ(macroType(u"%cursor:cursor%"), MacroType::cursor);
  EXPECT_EQ(macroType(u"%clipboard%%cursor%"), MacroType::cursor);
  EXPECT_EQ(macroType(u"%clipboard%"), MacroType::clipboard);
  EXPECT_EQ(macroType(u"%clipboard:pasteText=1:clipboard%"), MacroType::clipboard);
  for (const auto* none : {u"", u"%", u":", u"%:", u"%date%", u"%Date:date%", u"%dates:date%", u"%cursor"}) {
    EXPECT_EQ(macroType(none), std::nullopt) << toUtf8(none);
  }
}

TEST(MacroMarkup, FindsArgumentsWhereTheirNameFirstOccurs) {
  EXPECT_EQ(valueForArgument(u"name", u"%options:name0=A:name=B:options%"), u"B");
  EXPECT_EQ(valueForArgument(u"name", u"%options:xname=A:name=B:options%"), u"A");
  EXPECT_EQ(valueForArgument(u"default", u"%textfield:name=:default=:textfield%"), u"");
  EXPECT_EQ(valueForArgument(u"Name", u"%textfield:name=X:textfield%"), std::nullopt);
  EXPECT_EQ(valueForArgument(u"name", u"%textfield:name=X"), std::nullopt);
  EXPECT_EQ(valueForArgument(u"dateFormat", u"%date:dateFormat=%dd.%MM.%YY:date%"), u"%dd.%MM.%YY");
}

TEST(MacroMarkup, WritesANewArgumentInFrontAndAnOldOneInItsPlace) {
  const auto set = [](std::u16string_view value, std::u16string_view macro) {
    return setValueForArgument(value, u"default", macro, Escaping::escape);
  };
  EXPECT_EQ(set(u"V", u"%textfield:name=X:textfield%"), u"%textfield:default=V:name=X:textfield%");
  EXPECT_EQ(set(u"V", u"%textfield:default=old:name=X:textfield%"),
            u"%textfield:default=V:name=X:textfield%");
  EXPECT_EQ(set(u"V", u"%textfield:default=cut off"), u"%textfield:default=V");
  EXPECT_EQ(set(u"V", u"no macro"), u"no macro");
  EXPECT_EQ(setValueForArgument(u"1", u"pasteText", u"%clipboard%", Escaping::escape),
            u"%clipboard:pasteText=1:clipboard%");
  EXPECT_EQ(setValueForArgument(u"%HH%1111%mm", u"timeFormat", u"%date:date%", Escaping::none),
            u"%date:timeFormat=%HH%1111%mm:date%");
}

TEST(MacroMarkup, RemovesAnArgumentWithItsSeparator) {
  EXPECT_EQ(removeArgument(u"default", u"%textfield:name=X:default=Y:textfield%"),
            u"%textfield:name=X:textfield%");
  EXPECT_EQ(removeArgument(u"name", u"%textfield:name=:default=Y:textfield%"),
            u"%textfield:default=Y:textfield%");
  EXPECT_EQ(removeArgument(u"ame", u"%textfield:name=X:textfield%"), std::nullopt);
  const CapturedLog log;
  EXPECT_EQ(removeArgument(u"name", u"%textfield:name=X"), std::nullopt);
  EXPECT_EQ(log.lines(), std::vector<std::string>{"WARNING: #rgjgbdd - 10 17"});
}

TEST(MacroMarkup, EscapesTheSyntaxInValues) {
  EXPECT_EQ(escapeMacroValue(u"a:b=c%d"), u"a(!(colon)!)b(!(equal)!)c(!(percent)!)d");
  EXPECT_EQ(unescapeMacroValue(u"(!((!(colon)!)(!(equal)!(!(percent)!)"), u"(!(:(!(equal)!%");
  Random random(1);
  for (int i = 0; i < 2000; ++i) {
    const auto value = randomMarkup(random, 12);
    if (value.find(u"(!(") != value.npos) continue;  // what looks escaped does not come back
    const auto macro =
        setValueForArgument(value, u"default", u"%textfield:name=X:textfield%", Escaping::escape);
    EXPECT_EQ(valueForArgument(u"default", macro), value) << toUtf8(value);
    EXPECT_EQ(valueForArgument(u"name", removeArgument(u"default", macro).value_or(u"")), u"X");
    EXPECT_EQ(macroStrings(u"% " + macro + u" %"), std::vector<std::string>{toUtf8(macro)});
  }
}

TEST(MacroMarkup, ReadsBooleansByTheirFirstCharacterAndIntegersWhole) {
  for (const auto* yes : {u"1", u"9", u"yes", u"Y", u"true", u"T", u"2nd"}) EXPECT_TRUE(readBoolean(yes));
  for (const auto* no : {u"", u"0", u"01", u"no", u" 1", u"-1", u"off"}) EXPECT_FALSE(readBoolean(no));
  EXPECT_EQ(readInteger(u"+12"), 12);
  EXPECT_EQ(readInteger(u"-007"), -7);
  EXPECT_EQ(readInteger(u"-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(readInteger(u"9223372036854775807"), std::numeric_limits<std::int64_t>::max());
  for (const auto* none : {u"", u"+", u"--1", u"1.5", u" 1", u"1 ", u"x", u"٣", u"9223372036854775808",
                           u"99999999999999999999", u"-9223372036854775809"}) {
    EXPECT_EQ(readInteger(none), std::nullopt) << toUtf8(none);
  }
}

TEST(MacroMarkup, NamesKeysAndListStyles) {
  EXPECT_EQ(specialKeyFromRawValue(u"delete"), SpecialKeyMacroValue::forwardDelete);
  EXPECT_EQ(specialKeyFromRawValue(u"return"), SpecialKeyMacroValue::returnKey);
  EXPECT_EQ(specialKeyFromRawValue(u"Return"), std::nullopt);
  EXPECT_EQ(displayName(SpecialKeyMacroValue::forwardDelete), u"⌦ (Forward Delete)");
  for (const auto key : kAllSpecialKeyMacroValues) EXPECT_EQ(specialKeyFromRawValue(rawValue(key)), key);
  for (const auto type : kAllMultipleChoiseTypes)
    EXPECT_EQ(multipleChoiseTypeFromRawValue(rawValue(type)), type);
}

struct FindingCase {
  std::u16string_view text;
  std::vector<std::string> found;
};

TEST(FindMacros, EndsARunAtItsNameOrAtTheNextPercentSign) {
  const FindingCase cases[] = {
      {u"", {}},
      {u"%", {}},
      {u"100 % of 50 %", {}},
      {u"%cursor%", {"%cursor%"}},
      {u"a%clipboard%b", {"%clipboard%"}},
      {u"%date:dateFormat=%dd.%MM:date%", {"%date:dateFormat=%dd.%MM:date%"}},
      {u"%cursor%%date:date%%cursor:cursor%", {"%cursor%", "%date:date%", "%cursor:cursor%"}},
      // The short form has no second name, so every run ends at the next percent sign.
      {u"%clipboard%%date:dateLength=custom:dateFormat=%dd.%MM:timeLength=none:date%",
       {"%clipboard%", "%date:dateLength=custom:dateFormat=%"}},
      {u"%clipboard%%textfield:name=50(!(percent)!):textfield%",
       {"%clipboard%", "%textfield:name=50(!(percent)!):textfield%"}},
      {u"%clipboard:pasteText=1:clipboard% %date:dateFormat=%d:date%",
       {"%clipboard:pasteText=1:clipboard%", "%date:dateFormat=%d:date%"}},
      // A type that cannot be read is no macro; one inside another is part of it.
      {u"%cursors are 50%, %datebook:date%", {}},
      {u"%date %cursor% date%", {"%cursor%"}},
      {u"%textfield:default=%cursor%:textfield%", {"%textfield:default=%cursor%:textfield%"}},
      {u"%date %date:date%", {}},
  };
  for (const auto& [text, found] : cases) EXPECT_EQ(macroStrings(text), found) << toUtf8(text);
}

TEST(FindMacros, LeavesAnOpeningWithoutAnEndAndWarnsOnceForItsType) {
  const CapturedLog log;
  EXPECT_EQ(macroStrings(u"%date:date% %date:x %date:y %cursor%"),
            (std::vector<std::string>{"%date:date%", "%cursor%"}));
  EXPECT_EQ(log.lines(), std::vector<std::string>{"WARNING: #3ddsdsc string may contain unsupported macros: "
                                                  "%date:date% %date:x %date:y %cursor%"});
  EXPECT_TRUE(findMacros(u"an opening in the last place: %date").empty());
  EXPECT_EQ(log.lines().size(), 1U);
}

TEST(FindMacros, KeepsRunsOfOneTypeApartAndInOrderInAnyText) {
  const CapturedLog log;
  Random random(2);
  for (int i = 0; i < 3000; ++i) {
    const auto text = randomMarkup(random, 20);
    std::size_t start = 0;
    std::map<MacroType, std::size_t> ends;
    for (const auto& [range, type] : findMacros(text)) {
      EXPECT_LE(start, range.location);
      EXPECT_LE(ends[type], range.location);
      ASSERT_LE(range.end(), text.size());
      EXPECT_TRUE(text.substr(range.location).starts_with(u"%" + std::u16string(rawValue(type))));
      EXPECT_EQ(text[range.end() - 1], u'%');
      start = range.location;
      ends[type] = range.end();
    }
  }
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
  EXPECT_EQ(who.type(), MacroType::textField);
  EXPECT_EQ(who.attributes(), bold);
  EXPECT_EQ(who.location(), 5U);
  EXPECT_EQ(who.mouseCursor(), MacroTextAttachment::MouseCursor::pointingHand);
  EXPECT_EQ(editor.attachments[1]->mouseCursor(), MacroTextAttachment::MouseCursor::arrow);
  EXPECT_EQ(editor.attachments[1]->location(), 44U);
  EXPECT_EQ(who.description(), u"<MacroTextAttachment: macroString: %textfield:name=Who:default=:textfield%");
  EXPECT_EQ(toStoredText(editor), stored);

  // Moved and copied as an editor moves and copies text; changed through the token.
  std::vector<MacroTextAttachment::Change> changes;
  const auto subscription = who.observe([&](auto change) { changes.push_back(change); });
  who.setMacroString(u"%textfield:name=You:textfield%");
  who.setMacroString(u"%textfield:name=You:textfield%");
  who.setPreviewValue(u"Ann");
  who.setLabel(u"Person");
  EXPECT_EQ(changes,
            (std::vector{MacroTextAttachment::Change::macroString, MacroTextAttachment::Change::previewValue,
                         MacroTextAttachment::Change::label}));
  editor.text.insert(0, editor.text.slice({5, 1}));
  editor.text.replace({7, 1}, u"");
  EXPECT_EQ(toStoredText(editor).string(),
            u"%textfield:name=You:textfield%Dear %textfield:name=You:textfield%, see \uFFFC.");
}

TEST(MacroTokens, SurviveAnyTextAndAnyMark) {
  const CapturedLog log;
  Random random(3);
  for (int i = 0; i < 500; ++i) {
    const AttributedString stored(randomMarkup(random, 20), randomAttributes(random));
    EXPECT_EQ(toStoredText(toEditorText(stored)), stored);
  }
  for (const auto* mark : {"", "7", "-1", "1x", "99999999999999999999999"}) {
    TextAttributes marked;
    marked.custom[kMacroMark] = mark;
    EXPECT_EQ(toStoredText({AttributedString(u"\uFFFC", marked), {}}), AttributedString(u"\uFFFC"));
  }
}

}  // namespace
}  // namespace quorlo
