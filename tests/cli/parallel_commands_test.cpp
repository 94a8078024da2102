#include "cli/shell_test.h"

#include <string>

namespace quorlo {
namespace {

class ParallelCommandsTest : public ShellTest {
 protected:
  // Abbreviations that more than one snippet has.
  std::string duplicates() const { return out("quorlo list | cut -f1 | grep . | sort | uniq -d"); }
};

TEST_F(ParallelCommandsTest, GiveAnAbbreviationToOneSnippetAndMakeAFolderOnce) {
  run("for n in $(seq 12); do for p in 1 2 3 4; do quorlo add -a dup$n -t text -f Folder$n & done; wait; done");
  EXPECT_EQ(duplicates(), "");
  EXPECT_EQ(out("quorlo list | wc -l"), "12\n");
  for (int n = 1; n <= 12; ++n) {
    out("quorlo add -t again -f Folder" + std::to_string(n));  // fails where two folders have the title
  }
}

TEST_F(ParallelCommandsTest, GiveAnAbbreviationOnceWhileEditingRestoringAndImporting) {
  out("seq 200 | sed 's/.*/Title &,abbr&,text &/' > table.csv");
  run("for p in 1 2 3 4; do quorlo import --no-header table.csv & done; wait");
  EXPECT_EQ(duplicates(), "");
  EXPECT_EQ(out("quorlo list | cut -f1 | grep -c abbr"), "200\n");

  out("for n in 1 2 3 4; do quorlo add -a same -t trashed$n && quorlo remove same; quorlo add -t live$n; done");
  run("for n in 1 2 3 4; do quorlo restore trashed$n & quorlo edit live$n -a same & done; wait");
  EXPECT_EQ(duplicates(), "");
  EXPECT_EQ(out("quorlo list | cut -f1 | grep -c same"), "1\n");
}

// What a command waits for from elsewhere must not keep other programs waiting.
TEST_F(ParallelCommandsTest, LetOthersWriteWhileOneReadsItsInput) {
  out("quorlo add -t first && mkfifo pipe");
  out("quorlo add -a piped --text - < pipe & exec 3> pipe; timeout 20 quorlo add -a quick -t quick; "
      "echo 'from the pipe' >&3; exec 3>&-; wait");
  EXPECT_EQ(out("quorlo list | cut -f1 | grep . | sort"), "piped\nquick\n");
}

}  // namespace
}  // namespace quorlo
