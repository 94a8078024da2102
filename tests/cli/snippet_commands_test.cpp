#include "cli/shell_test.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <thread>
#include <vector>

namespace quorlo {
namespace {

using nlohmann::json;
using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Not;
using ::testing::StartsWith;

class SnippetCommandsTest : public ShellTest {
 protected:
  json document(const std::string& script) const {
    auto parsed = json::parse(out(script), nullptr, false);
    EXPECT_FALSE(parsed.is_discarded()) << script;
    return parsed;
  }
  std::string uuid(const std::string& name) const {
    return document("quorlo show --json -- '" + name + "'")["uuid"];
  }
};

TEST_F(SnippetCommandsTest, WithoutALibraryReadingFindsNothingAndBeginsNone) {
  const auto listed = run("quorlo list");
  EXPECT_EQ(listed.status, 0);
  EXPECT_EQ(listed.out, "");
  EXPECT_THAT(listed.err, HasSubstr("There is no library yet"));
  EXPECT_EQ(document("quorlo list --json 2>/dev/null"), json::parse(R"({"snippets": []})"));
  for (const std::string command : {"search x", "show x", "edit x --title y", "remove x", "restore x"}) {
    EXPECT_EQ(run("quorlo " + command).status, 1) << command;
  }
  EXPECT_FALSE(std::filesystem::exists(home_ / ".local"));
}

TEST_F(SnippetCommandsTest, WhatIsAddedIsListedFoundAndShown) {
  EXPECT_THAT(out("quorlo add -a brb -t 'be right back'"),
              MatchesRegex("Added [0-9A-F]{8}  brb  be right back\n"));
  out("printf 'Kind regards,\\r\\nAda\\n' | quorlo add --text - --title Signature --abbreviation ';sig' -f Letters");
  out("quorlo add --file <(true) -t x 2>/dev/null || quorlo add --text \"it's 5 %\" --type code");
  file("greeting.txt", "Grüße aus Köln\n");
  out("quorlo add --file greeting.txt --folder letters");

  EXPECT_THAT(out("quorlo list"), MatchesRegex("brb\tbe right back\t\t[-0-9A-F]{36}\n"
                                               "\tGrüße aus Köln\tLetters\t[-0-9A-F]{36}\n"
                                               "\tit's 5 %\t\t[-0-9A-F]{36}\n"
                                               ";sig\tSignature\tLetters\t[-0-9A-F]{36}\n"));
  EXPECT_EQ(out("quorlo list --folder LETTERS --reverse | cut -f2"), "Signature\nGrüße aus Köln\n");
  EXPECT_EQ(out("quorlo list --sort created | cut -f2 | head -1"), "Grüße aus Köln\n");
  EXPECT_EQ(out("quorlo search RIGHT b | cut -f1"), "brb\n");
  EXPECT_EQ(run("quorlo search nowhere").status, 1);
  EXPECT_EQ(out("quorlo show ';sig' --text"), "Kind regards,\nAda\n");

  const auto shown = document("quorlo show Signature --json");
  EXPECT_EQ(shown["text"], "Kind regards,\nAda");
  EXPECT_EQ(shown["folder"]["title"], "Letters");
  EXPECT_EQ(shown["type"], "plain");
  EXPECT_EQ(shown["deleted"], nullptr);
  EXPECT_THAT(shown["created"].get<std::string>(), MatchesRegex("20..-..-..T..:..:..\\....Z"));
  EXPECT_EQ(document("quorlo stats --json")["withAbbreviation"], 2);
  EXPECT_THAT(out("quorlo stats"), HasSubstr("Snippets           4\n"));
}

TEST_F(SnippetCommandsTest, TheMenuSearchesWhereTheSettingsSay) {
  out("quorlo add -a brb -t 'be right back' --title Away");
  out("mkdir -p .config/quorlo; echo '{\"SearchScopes\": 1}' > .config/quorlo/shared-settings.json");
  EXPECT_EQ(run("quorlo search right").status, 1);
  EXPECT_EQ(run("quorlo search away").status, 0);
}

TEST_F(SnippetCommandsTest, WhatCannotBeAddedIsRefusedInWordsAndAddsNothing) {
  out("quorlo add -a brb -t 'be right back'");
  EXPECT_THAT(complaint("quorlo add -a brb -t other"),
              HasSubstr("\"brb\" is already in use by \"be right back\""));
  EXPECT_THAT(complaint("quorlo add -a 'b b' -t other"), HasSubstr("illegal characters"));
  EXPECT_THAT(complaint("quorlo add -a " + std::string(31, 'x') + " -t other"), HasSubstr("too long"));
  EXPECT_THAT(complaint("quorlo add --text ''"), HasSubstr("empty"));
  EXPECT_THAT(complaint("quorlo add -a x", 2), HasSubstr("--text"));
  EXPECT_THAT(complaint("quorlo add -t a --file b", 2), HasSubstr("--file"));
  EXPECT_THAT(complaint("quorlo add -t $'\\xff'", 2), HasSubstr("UTF-8"));
  EXPECT_THAT(complaint("printf 'a\\xffb' | quorlo add --text -"), HasSubstr("UTF-8"));
  EXPECT_THAT(complaint("printf 'a\\0b' | quorlo add --text -"), HasSubstr("NUL"));
  EXPECT_THAT(complaint("quorlo add --file nowhere.txt"), HasSubstr("nowhere.txt"));
  EXPECT_EQ(document("quorlo stats --json")["snippets"], 1);
  // One that a shorter abbreviation is in the way of is only advised against.
  out("mkdir -p .config/quorlo; echo '{\"AbbreviationsTriggerType\": 1}' > .config/quorlo/settings.json");
  const auto advised = run("quorlo add -a brb2 -t other");
  EXPECT_EQ(advised.status, 0);
  EXPECT_THAT(advised.err, HasSubstr("\"brb\" expands before"));
}

TEST_F(SnippetCommandsTest, ChangesWhatIsGivenAndKeepsTheRest) {
  out("quorlo add -a brb -t 'be right back' -f Chat");
  EXPECT_THAT(complaint("quorlo edit brb", 2), HasSubstr("Nothing to change"));
  out("quorlo edit brb --text 'back soon'");
  EXPECT_EQ(out("quorlo list | cut -f1-3"), "brb\tback soon\tChat\n");
  out("quorlo edit brb --title Away --folder '' -a bs");
  out("quorlo edit bs --text 'back at once'");
  EXPECT_EQ(out("quorlo list | cut -f1-3"), "bs\tAway\t\n");
  out("quorlo edit bs -a ''");
  EXPECT_EQ(document("quorlo show Away --json")["abbreviation"], nullptr);
}

TEST_F(SnippetCommandsTest, AnAmbiguousNameListsWhatItMayMean) {
  out("quorlo add -a one -t first --title Same; quorlo add -a two -t second --title Same; quorlo add -t x --title two");
  const auto said = complaint("quorlo show Same");
  EXPECT_THAT(said, AllOf(HasSubstr("2 snippets"), HasSubstr("one  Same"), HasSubstr("two  Same")));
  EXPECT_EQ(out("quorlo show two --text"), "second\n") << "abbreviations come before titles";
  const auto one = uuid("one");
  EXPECT_EQ(out("quorlo show --text " + one.substr(0, 8)), "first\n");
  EXPECT_EQ(run("quorlo show --text " + one.substr(0, 3)).status, 1);
  EXPECT_THAT(complaint("quorlo remove one Same"), HasSubstr("2 snippets"));
  EXPECT_EQ(document("quorlo stats --json")["inTrash"], 0) << "all of them or none";
}

TEST_F(SnippetCommandsTest, TheTrashKeepsWhatIsRemovedUntilItIsDeletedForGood) {
  out("quorlo add -a brb -t 'be right back'; quorlo add -a sig -t Regards");
  EXPECT_THAT(out("quorlo remove brb sig"), HasSubstr("Moved to the trash"));
  EXPECT_EQ(out("quorlo list"), "");
  EXPECT_EQ(out("quorlo list --trash | cut -f1"), "brb\nsig\n");
  EXPECT_THAT(complaint("quorlo edit brb --title x"), HasSubstr("quorlo restore"));
  EXPECT_EQ(document("quorlo show brb --json")["deleted"].is_string(), true);
  out("quorlo restore brb");
  EXPECT_THAT(complaint("quorlo restore brb"), HasSubstr("not in the trash"));

  out("quorlo add -a sig -t 'Another signature'");
  const auto restored = run("quorlo restore sig");
  EXPECT_EQ(restored.status, 0);
  EXPECT_THAT(restored.err, HasSubstr("\"sig\" belongs to \"Another signature\" now"));
  EXPECT_EQ(document("quorlo show Regards --json")["abbreviation"], nullptr);

  EXPECT_THAT(complaint("quorlo remove --permanently sig", 2), HasSubstr("--yes"));
  out("quorlo remove --permanently --yes sig");
  EXPECT_EQ(run("quorlo show sig").status, 1);
}

TEST_F(SnippetCommandsTest, ATerminalGetsColumnsThatFitAndNoControlCharacters) {
  out("quorlo add -a ';gs' --title $'Grüße 日本語 und noch viel mehr Text, der nicht mehr passt' -t x");
  out("quorlo add -a e -t $'\\e[31mred\\e[0m\\ttab'");
  const auto shown = [&](const std::string& command) {
    return out("stty() { command stty \"$@\"; }; TERM=dumb script -qec 'stty cols 60; " + command +
               "' /dev/null");
  };
  EXPECT_EQ(shown("quorlo list | cat").find('\t'), std::string("e").size()) << "a pipe gets lines";
  const auto list = shown("quorlo list");
  EXPECT_THAT(list, Not(HasSubstr("\x1b")));
  EXPECT_THAT(list, MatchesRegex("ABBREVIATION *TITLE *FOLDER? *UUID *\r\n(.|\n)*"));
  EXPECT_THAT(list, HasSubstr("␛[31mred␛[0m tab"));
  EXPECT_THAT(list, MatchesRegex("(.|\n)*;gs +Grüße 日本語 und noch[^\n]*…  +[0-9A-F]{8}\r\n(.|\n)*"));
  EXPECT_THAT(shown("quorlo show e"), Not(HasSubstr("\x1b")));
  EXPECT_EQ(out("quorlo show e --text"), "\x1b[31mred\x1b[0m\ttab\n") << "other programs get it as it is";
}

TEST_F(SnippetCommandsTest, OutputThatNobodyReadsOrTakesEndsTheCommand) {
  file("many.csv", [] {
    std::string rows = "text\n";
    for (int i = 0; i < 20000; ++i) rows += "snippet number " + std::to_string(i) + "\n";
    return rows;
  }());
  out("quorlo import many.csv");
  const auto piped = run("quorlo list | head -1; echo ${PIPESTATUS[0]}");
  EXPECT_EQ(piped.err, "");
  EXPECT_THAT(piped.out, EndsWith("141\n"));
  for (const std::string command :
       {"list", "show 'snippet number 7'", "export", "--help", "completion bash"}) {
    EXPECT_THAT(complaint("quorlo " + command + " > /dev/full"), HasSubstr("No space left")) << command;
  }
}

TEST_F(SnippetCommandsTest, ManyAtOnceBeginOneLibraryAndLoseNothing) {
  out("for i in {1..12}; do quorlo add -a a$i -t text$i & done; wait");
  EXPECT_EQ(document("quorlo stats --json")["snippets"], 12);
}

TEST_F(SnippetCommandsTest, WordsMeanWhatTheySay) {
  out("quorlo add -a sig -t one --title=; quorlo add -a '[sig]' -t two; quorlo add --abbreviation=-x --text='-a b'");
  EXPECT_EQ(out("quorlo edit sig --abbreviation= --text=zzz --folder= | cut -d' ' -f3-"), " zzz\n");
  EXPECT_EQ(out("quorlo remove '[sig]' -- -x | cut -d' ' -f1-4"), "Moved to the trash\nMoved to the trash\n");
  EXPECT_EQ(out("quorlo list | cut -f1-3"), "\tzzz\t\n");
  EXPECT_EQ(out("quorlo restore '[sig]' | cut -d' ' -f4-"), "[sig]  two\n");
}

}  // namespace
}  // namespace quorlo
