#include "cli/shell_test.h"

#include <gmock/gmock.h>

namespace quorlo {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

class CompletionTest : public ShellTest {
 protected:
  void SetUp() override {
    out("quorlo add -a brb -t 'be right back' -f 'My Letters'; quorlo add -a ';sig' -t Regards; quorlo add -a old -t x");
    out("quorlo remove old");
    file("bread.csv", "text\n");
  }
  // What bash would offer for the words, one a line.
  std::string offered(const std::string& words, int last) const {
    return out("eval \"$(quorlo completion bash)\"; COMP_WORDS=(quorlo " + words + "); COMP_CWORD=" +
               std::to_string(last) + "; compopt() { :; }; _quorlo; printf '%s\\n' \"${COMPREPLY[@]}\"");
  }
};

TEST_F(CompletionTest, BashCompletesWhatMayStandInThePlace) {
  const struct {
    const char* words;
    int last;
    const char* offered;
  } cases[] = {
      {"sh", 1, "show\n"},
      {"export --fo", 2, "--format\n--folder\n"},
      {"export --format ''", 3, "json\ncsv\n"},
      {"list --sort=mo", 2, "--sort=modified\n"},
      {"show ''", 2, "brb\n\\;sig\n"},
      {"edit b", 2, "brb\n"},
      {"edit brb --folder ''", 4, "My\\ Letters\n"},
      {"restore ''", 2, "old\n"},
      {"remove brb \\\\\\;", 3, "\\;sig\n"},
      {"import b", 2, "bread.csv\n"},
      {"import bread.csv --dry-run b", 4, "bread.csv\n"},
      {"show brb ''", 3, "\n"},
      {"completion z", 2, "zsh\n"},
      {"show --nonsense x", 3, "\n"},
  };
  for (const auto& [words, last, expected] : cases) EXPECT_EQ(offered(words, last), expected) << words;
}

TEST_F(CompletionTest, NothingIsOfferedOrSaidWithoutALibrary) {
  out("rm -rf .local");
  const auto asked = run("quorlo complete -- show ''");
  EXPECT_EQ(asked.out, "values\n");
  EXPECT_EQ(asked.err, "");
}

TEST_F(CompletionTest, TheManualPageIsSoundAndKnowsEveryCommand) {
  out("quorlo man > quorlo.1");
  EXPECT_EQ(run("groff -man -Tutf8 -ww -z quorlo.1").err, "");
  const auto commands = out("quorlo complete -- '' | tail -n +2 | cut -f1");
  std::istringstream lines(commands);
  const auto page = content("quorlo.1");
  for (std::string command; std::getline(lines, command);) {
    EXPECT_THAT(page, HasSubstr("\\fBquorlo " + command)) << command;
    EXPECT_EQ(out("quorlo " + command + " --help"), out("quorlo help " + command)) << command;
  }
  EXPECT_THAT(page, AllOf(HasSubstr(".SH EXIT STATUS"), HasSubstr(".SH MACROS"), HasSubstr(".SH TABLES"),
                          Not(HasSubstr("complete \\-\\-"))));
}

}  // namespace
}  // namespace quorlo
