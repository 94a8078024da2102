#include "fakes/fake_environment.h"
#include "import/formats/macro_text_writer.h"
#include "import/formats/text_expander_markers.h"
#include "macros/find_macros.h"
#include "macros/ql_snippet_macro_interpreter.h"
#include "text/utf.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

TEST(MarkerTest, EachMarkerBecomesItsMacro) {
  const std::pair<std::u16string_view, std::u16string_view> cases[] = {
      {u"no markers", u"no markers"},
      {u"50%% off, 20 % less, %", u"50% off, 20 % less, %"},
      {u"<b>%|</b>", u"<b>%cursor%</b>"},
      {u"[%clipboard]", u"[%clipboard:pasteText=1:clipboard%]"},
      {u"%snippet:a:b%", u"%snippet:abbreviation=a(!(colon)!)b:snippet%"},
      {u"%key:Tab%%key:enter%", u"%specialKey:value=tab:specialKey%%specialKey:value=return:specialKey%"},
      {u"%<%>%^%v",
       u"%specialKey:value=leftArrow:specialKey%%specialKey:value=rightArrow:specialKey%"
       u"%specialKey:value=upArrow:specialKey%%specialKey:value=downArrow:specialKey%"},
      {u"%fill:First name%", u"%textfield:name=First name:default=:textfield%"},
      {u"%filltext:name=T:default=10:30=x:width=3%",
       u"%textfield:name=T:default=10(!(colon)!)30(!(equal)!)x:textfield%"},
      {u"%fillarea:name=N:width=30:height=5%", u"%textfield:name=N:default=:textfield%"},
      {u"%fillpopup:name=S:small:default=medium:large%",
       u"%options:name=S:default=1:name0=small:name1=medium:name2=large:options%"},
      {u"a%fillpart:name=P:default=yes% 5%% more%fillpartend%b",
       u"a%options:name=P:default=0:name0= 5(!(percent)!) more:name1=:options%b"},
      {u"%fillpart:name=P%x%fillpartend%", u"%options:name=P:default=1:name0=x:name1=:options%"},
      {u"%Y-%m-%d", u"%date:dateLength=custom:dateFormat=%yyyy-%MM-%dd:timeLength=none:date%"},
      {u"%1I:%M %p.", u"%date:timeLength=custom:timeFormat=%h%1111%mm %a:dateLength=none:date%."},
      {u"%A (%e)",
       u"%date:dateLength=custom:dateFormat=%EEEE:timeLength=none:date% ("
       u"%date:dateLength=custom:dateFormat=%d:timeLength=none:date%)"},
      {u"%@+2W%d", u"%date:dateLength=custom:dateFormat=%dd:timeLength=none:math=14:mathType=days:date%"},
      {u"%d%@-1Y%@+1M%Y",
       u"%date:dateLength=custom:dateFormat=%dd:timeLength=none:date%"
       u"%date:dateLength=custom:dateFormat=%yyyy:timeLength=none:math=-11:mathType=months:date%"},
  };
  for (const auto& [markers, macros] : cases) {
    EXPECT_EQ(toUtf8(translateTextExpanderMarkers(markers).text), toUtf8(macros));
  }
}

TEST(MarkerTest, WhatHasNoCounterpartStaysTextAndIsListed) {
  const struct {
    std::u16string_view text;
    std::u16string_view result;
    std::vector<std::u16string_view> listed;
  } cases[] = {
      {u"%20 100% &%EC", u"%20 100% &%EC", {u"%E"}},
      {u"%-%+%\\%-", u"%-%+%\\%-", {u"%-", u"%+", u"%\\"}},
      {u"%key:f13% %new one% %new:one two%",
       u"%key:f13% %new one% %new:one two%",
       {u"%key:f13%", u"%n", u"%new:one two%"}},
      {u"%@+1M%@+1D%@+x", u"%@+1D%@+x", {u"%@+1D", u"%@"}},
      {u"%fillpart:name=p%%|%fillpartend%%fillpart:name=q%",
       u"%fillpart:name=p%%cursor%%fillpartend%%fillpart:name=q%",
       {u"%fillpart:name=p%", u"%fillpartend%", u"%fillpart:name=q%"}},
  };
  for (const auto& [text, result, listed] : cases) {
    const auto translated = translateTextExpanderMarkers(text);
    EXPECT_EQ(toUtf8(translated.text), toUtf8(result));
    ASSERT_EQ(translated.notices.size(), listed.size()) << toUtf8(text);
    for (std::size_t i = 0; i < listed.size(); ++i) {
      EXPECT_TRUE(translated.notices[i].starts_with(u"“" + std::u16string(listed[i]) + u"”"))
          << toUtf8(translated.notices[i]);
    }
  }
}

TEST(MarkerTest, MarkersCannotTakeAllMemory) {
  std::u16string arrows;
  for (int i = 0; i < 1'000'000; ++i) arrows += u"%<";
  const auto translated = translateTextExpanderMarkers(arrows);
  EXPECT_LT(translated.text.size(), std::size_t{7} << 20);
  EXPECT_EQ(translated.notices.size(), 1U);
}

std::string evaluated(const std::u16string& text) {
  static const FakeEnvironment environment;
  static const QLSnippetMacroInterpreter interpreter(environment, [](const auto&) { return std::nullopt; });
  return toUtf8(interpreter.evaluate(AttributedString(text), kAllMacroTypes, {}).text.string());
}

TEST(MarkerTest, ALiteralPercentSignNeverBeginsAMacro) {
  // What other programs mean literally, and how it reads once the macros around it are evaluated.
  for (const std::u16string_view text :
       {u"100%", u"%cursor% and %clipboard%", u"%date% of %specialKey:value=tab:specialKey%",
        u"%date:dateLength=short:timeLength=none:date%", u"echo %textfield:x %snippet:textfield%"}) {
    EXPECT_EQ(evaluated(literalMacroText(text).text), toUtf8(text));
    EXPECT_NE(literalMacroText(text).signs, LiteralSigns::misread);
  }
  EXPECT_EQ(literalMacroText(u"100% %dates").signs, LiteralSigns::kept);
  // An opening that is none would take the end of the true macro behind it.
  const auto mixed = translateTextExpanderMarkers(u"%%date: %filltext:name=N:default=D% %%clipboard%% %p%|");
  EXPECT_TRUE(evaluated(mixed.text).starts_with("%date: D %clipboard% ")) << evaluated(mixed.text);
  EXPECT_EQ(mixed.notices.size(), 1U);
}

}  // namespace
}  // namespace quorlo
