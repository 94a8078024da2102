#include "text/html_writer.h"

#include "text/attributed_string.h"

#include <gtest/gtest.h>

#include <string>

namespace quorlo {
namespace {

// What stands in the document's body.
std::string body(const AttributedString& text) {
  const auto html = toHtml(text);
  EXPECT_NE(html.find("charset=utf-8"), std::string::npos);
  const auto start = html.find("<body>") + 6;
  return html.substr(start, html.find("</body>") - start);
}

TEST(HtmlWriter, WritesPlainTextWithoutAnyStyle) {
  const std::pair<std::u16string, std::string> cases[] = {
      {u"Grüße 🙂", "Grüße 🙂"},
      {u"a < b && \"c\" > 'd'", "a &lt; b &amp;&amp; &quot;c&quot; &gt; 'd'"},
      {u"one\ntwo\r\nthree\rfour\u2028five\u2029six\u0085seven",
       "one<br>two<br>three<br>four<br>five<br>six<br>seven"},
      {u"a b", "a b"},
      {u"  a", "&nbsp; a"},
      {u"a  b", "a<span style=\"white-space:pre-wrap\">&#32;&#32;</span>b"},
      {u"a \n   b ",
       "a<span style=\"white-space:pre-wrap\">&#32;</span><br>"
       "&nbsp;<span style=\"white-space:pre-wrap\">&#32;&#32;</span>b"
       "<span style=\"white-space:pre-wrap\">&#32;</span>"},
      {u"if:\n\tx", "if:<br><span style=\"white-space:pre\">&#9;</span>x"},
      {std::u16string(u"a\0b\x1B\xD83D\uFFFCz", 7), "ab\uFFFDz"},
  };
  for (const auto& [text, html] : cases) EXPECT_EQ(body(AttributedString(text)), html);
}

TEST(HtmlWriter, WritesEachAttributeAndNothingForMarksWithoutALook) {
  const auto png = std::make_shared<const std::vector<std::uint8_t>>(std::vector<std::uint8_t>{0x89, 0x50});
  const std::pair<TextAttributes, std::string> cases[] = {
      {{.bold = true, .italic = true}, "<b><i>x</i></b>"},
      {{.fontFamily = "O'Font \"1\"", .fontSizePoints = 10.5},
       "<span style=\"font-family:'O\\'Font &quot;1&quot;';font-size:10.5pt;\">x</span>"},
      {{.foreground = Color{204, 0, 10}, .background = Color{0, 0, 0, 51}},
       "<span style=\"color:#cc000a;background-color:rgba(0,0,0,0.200);\">x</span>"},
      {{.bold = true, .link = "https://x.org/?a=1&b=\"2\""},
       "<a href=\"https://x.org/?a=1&amp;b=&quot;2&quot;\"><b>x</b></a>"},
      {{.image = ImageAttachment{png, "image/png"}}, "x"},  // not on its own character
      {{.custom = {{"path", "a"}}}, "x"},
  };
  for (const auto& [attributes, html] : cases) EXPECT_EQ(body(AttributedString(u"x", attributes)), html);
  EXPECT_EQ(body(AttributedString(u"\uFFFC", {.image = ImageAttachment{png, "image/png"}})),
            "<img src=\"data:image/png;base64,iVA=\">");
}

TEST(HtmlWriter, KeepsTagsAndSpacesRightAcrossRuns) {
  AttributedString text(u"a ", {.bold = true});
  text.append(u" b", {.bold = true, .custom = {{"path", "p"}}});
  text.append(u" c");
  text.append(u"\r", {.italic = true});
  text.append(u"\n d");
  EXPECT_EQ(body(text), "<b>a &nbsp;b</b> c<i><br></i>&nbsp;d");
}

}  // namespace
}  // namespace quorlo
