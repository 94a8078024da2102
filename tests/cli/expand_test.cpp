#include "cli/shell_test.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <vector>

namespace quorlo {
namespace {

using nlohmann::json;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

class ExpandTest : public ShellTest {
 protected:
  // Of a text on standard input.
  Outcome expand(const std::string& text, const std::string& options = "") const {
    file("text", text);
    return run("TZ=Europe/Berlin LANG=en_US.UTF-8 quorlo expand " + options + " < text");
  }

  static constexpr auto kLetter =
      "Dear %textfield:name=Name:default=friend:textfield%, "
      "%options:name=Size:default=1:name0=S:name1=M:name2=L:options% "
      "%options:name=Extras:multiple=1:name0=a, b:name1=c:name2=d:separator=+:options% "
      "%date:name=When:dateLength=short:timeLength=short:showPicker=1:math=1:mathType=days:date% "
      "%textfield:default=x:textfield%";
};

TEST_F(ExpandTest, AnswersStandInThePlaceOfTheWindow) {
  const std::string all =
      "-a Name=Ada=Lovelace -a Size=L -a Extras=d --answer='Extras=a, b' "
      "--answer When=2026-03-29T14:30 -a '#5='";
  const auto answered = expand(kLetter, "--strict " + all);
  EXPECT_EQ(answered.out, "Dear Ada=Lovelace, L a, b+d 3/29/26, 2:30 PM ");
  EXPECT_EQ(answered.err, "");
  struct Case {
    const char* options;
    const char* output;
  };
  for (const auto& [options, output] : std::vector<Case>{
           {"-a When=2026-11-22T12:00Z", "Dear friend, M a, b 11/22/26, 1:00 PM x"},
           {"-a When=2026-11-22 -a Extras=", "Dear friend, M  11/22/26, 12:00 AM x"},
           {"-a When=2026-07-01 -a Extras=c,d", "Dear friend, M c+d 7/1/26, 12:00 AM x"},
       }) {
    const auto outcome = expand(kLetter, options);
    EXPECT_EQ(outcome.out, output);
    EXPECT_THAT(outcome.err, AllOf(HasSubstr("Not answered, so the defaults stand:\n  \"Name\" (a text)"),
                                   HasSubstr(R"("Size" (one of "S", "M", "L"))"), Not(HasSubstr("When"))));
    const auto strict = expand(kLetter, std::string(options) + " --strict");
    EXPECT_EQ(strict.status, 1);
    EXPECT_EQ(strict.out, "");
  }
}

TEST_F(ExpandTest, AnAnswerThatCannotBeMeantSaysWhatCanBe) {
  struct Case {
    const char* options;
    const char* complaint;
  };
  for (const auto& [options, complaint] : std::vector<Case>{
           {"-a Nme=Ada", "No field is called \"Nme\"; there are:\n  \"Name\" (a text)\n  \"Size\""},
           {"-a Name", "The answer \"Name\" has no \"=\""},
           {"-a Size=XL", R"("XL" is no choice of the field "Size"; these are: "S", "M", "L")"},
           {"-a Extras=c,e", R"("c,e" is no choice of the field "Extras"; these are: "a, b", "c", "d")"},
           {"-a Size=S -a Size=M", "takes one of its choices, and is answered 2 times"},
           {"-a Name=a -a Name=b", "is answered more than once"},
           {"-a When=soon", "\"soon\" is no date for the field \"When\"; write it like 2026-11-22"},
       }) {
    const auto outcome = expand(kLetter, options);
    EXPECT_EQ(outcome.status, 1) << options;
    EXPECT_EQ(outcome.out, "") << options;
    EXPECT_THAT(outcome.err, HasSubstr(complaint));
  }
  EXPECT_THAT(expand("plain", "-a x=y").err, HasSubstr("the text asks for nothing"));
  EXPECT_EQ(expand("\xFF").status, 1);
  EXPECT_EQ(run("quorlo expand -a sig </dev/null; quorlo expand a b </dev/null").status, 2);
}

TEST_F(ExpandTest, SnippetsOfTheLibraryAreNestedAndNothingCountsAsUsed) {
  out("quorlo add -a sig --title Signature --text 'Ada %snippet:abbreviation=inner:snippet%'");
  out("quorlo add -a inner --text 'of %textfield:name=Place:textfield%'");
  EXPECT_EQ(out("quorlo expand sig -a Place=London"), "Ada of London");
  EXPECT_EQ(out("quorlo expand Signature -a Place=Paris"), "Ada of Paris");
  EXPECT_EQ(expand("%snippet:abbreviation=sig:snippet%!", "- -a Place=Rome").out, "Ada of Rome!");
  EXPECT_EQ(expand("%snippet:abbreviation=missing:snippet%!\r\nand").out, "!\nand");
  EXPECT_EQ(json::parse(out("quorlo show sig --json"))["useCount"], 0);
  const auto strict = expand("%snippet:abbreviation=missing:snippet%!", "--strict");
  EXPECT_EQ(strict.status, 1);
  EXPECT_EQ(strict.out, "");
  EXPECT_THAT(strict.err, HasSubstr("No snippet has the abbreviation \"missing\""));
  out("head -c 9000000 /dev/zero | tr '\\0' x | quorlo add -a long -t -");
  const auto twice =
      expand("%snippet:abbreviation=long:snippet%%snippet:abbreviation=long:snippet%", "--strict");
  EXPECT_EQ(twice.status, 1);
  EXPECT_EQ(twice.out, "");
  EXPECT_THAT(twice.err, HasSubstr("too long; the snippet \"long\" is left out"));
  EXPECT_THAT(complaint("quorlo expand nothing"), HasSubstr("There is no snippet \"nothing\""));

  file(".local/share/org.quorlo.Quorlo/private.sqlite", "no library");
  EXPECT_EQ(expand("no snippet in it").out, "no snippet in it");
  const auto damaged = expand("%snippet:abbreviation=sig:snippet%");
  EXPECT_EQ(damaged.status, 1);
  EXPECT_EQ(damaged.out, "");
}

TEST_F(ExpandTest, KeysAndTheClipboardAreWhatAScriptCanDoWithThem) {
  const auto* const text =
      "a%specialKey:value=tab:specialKey%b%specialKey:value=return:specialKey%%clipboard:clipboard%c"
      "%cursor%d%specialKey:value=escape:specialKey%%specialKey:code=36:modFlags=1048576:specialKey%";
  const auto plain = expand(text);
  EXPECT_EQ(plain.out, "a\tb\ncd");
  EXPECT_THAT(plain.err, AllOf(HasSubstr("The clipboard is left out; give its contents with --clipboard"),
                               HasSubstr("the key escape, the key combination with code 36")));
  EXPECT_EQ(expand(text, "--clipboard 'x%y'").out, "a\tb\nx%ycd");
  EXPECT_THAT(expand(text, "--clipboard x").err, Not(HasSubstr("clipboard")));
  EXPECT_EQ(json::parse(expand(text, "--json").out)["pieces"], json::parse(R"([
      {"text": "a"}, {"key": "tab"}, {"text": "b"}, {"key": "return"}, {"clipboard": "any"}, {"text": "c"},
      {"cursor": true}, {"text": "d"}, {"key": "escape"},
      {"key": "combination", "code": 36, "modFlags": 1048576}])"));
  const auto fields = json::parse(expand(kLetter, "--json -a Size=S").out)["fields"];
  EXPECT_EQ(fields[1], json::parse(R"({"name": "Size", "type": "options", "answered": true, "default": "M",
                                       "multiple": false, "choices": ["S", "M", "L"]})"));
  EXPECT_EQ(fields[4]["name"], "#5");
}

TEST_F(ExpandTest, RichTextIsPlainUnlessHtmlIsAskedFor) {
  file("rich.json", R"([{"abbreviation": "rich", "text": {"string": "Hi <%textfield:name=A:textfield%>\n",
                         "runs": [{"location": 0, "length": 2, "bold": true}]}}])");
  out("quorlo import rich.json");
  EXPECT_EQ(out("quorlo expand rich -a A=b"), "Hi <b>\n");
  const auto html = out("quorlo expand rich --html -a A=b");
  EXPECT_THAT(html, HasSubstr("<body><b>Hi</b> &lt;b&gt;<br></body>"));
  EXPECT_EQ(json::parse(out("quorlo expand rich --json -a A=b"))["html"], html);
}

}  // namespace
}  // namespace quorlo
