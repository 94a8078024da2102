#include "cli/shell_test.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace quorlo {
namespace {

using nlohmann::json;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

using BackupCommandsTest = ShellTest;

constexpr auto kData = ".local/share/org.quorlo.Quorlo/";

TEST_F(BackupCommandsTest, ABackupIsRestoredByItsFileOrDateAndThePresentLibraryIsKept) {
  EXPECT_THAT(complaint("quorlo backup"), HasSubstr("no library yet"));
  EXPECT_THAT(out("quorlo backup --list --json"), HasSubstr("\"backups\": []"));
  out("quorlo add -a sig -t 'Kind regards' -f Letters; quorlo add -a bye -t Goodbye; quorlo remove bye");
  const auto first = out("quorlo list; quorlo stats");
  EXPECT_THAT(out("quorlo backup"), StartsWith("Backed up 1 snippet to "));
  EXPECT_THAT(out("quorlo backup"), StartsWith("Nothing has changed since the backup of "));
  const auto listed = json::parse(out("quorlo backup --list --json"))["backups"];
  ASSERT_EQ(listed.size(), 1U);
  EXPECT_EQ(listed[0]["snippets"], 1);
  const std::string date = listed[0]["date"];

  out("quorlo add -a new -t New");
  const auto second = out("quorlo list; quorlo stats");
  EXPECT_THAT(complaint("quorlo restore " + date, 2), HasSubstr("--yes"));
  EXPECT_EQ(out("quorlo list; quorlo stats"), second);
  const auto restored = json::parse(out("quorlo restore --yes --json " + date));
  EXPECT_EQ(restored["snippets"], 1);
  EXPECT_EQ(out("quorlo list; quorlo stats"), first);
  EXPECT_EQ(out("quorlo restore bye >/dev/null; quorlo show bye --text"), "Goodbye\n") << "out of the trash";
  out("quorlo restore -y " + std::string(restored["keptAs"]));
  EXPECT_EQ(out("quorlo list; quorlo stats"), second);

  // Both copies are of one day.
  const auto day = out("date +%F").substr(0, 10);
  EXPECT_THAT(complaint("quorlo restore --yes " + day),
              AllOf(HasSubstr("may be any of"), HasSubstr("1 snippet ")));
  EXPECT_THAT(complaint("quorlo restore --yes 2001-01-01"), HasSubstr("no backup of 2001-01-01"));
  EXPECT_THAT(complaint("quorlo restore --yes --library nowhere.sqlite"),
              HasSubstr("no file \"nowhere.sqlite\""));
}

TEST_F(BackupCommandsTest, AFileIsWrittenWholeAndNeverReplacedUnasked) {
  out("quorlo add -a sig -t Regards");
  EXPECT_EQ(out("quorlo backup copy.sqlite; stat -c %a copy.sqlite"),
            "Backed up 1 snippet to " + (home_ / "copy.sqlite").string() + "\n600\n");
  out("quorlo add -a new -t New");
  EXPECT_THAT(complaint("quorlo backup copy.sqlite"), HasSubstr("--replace"));
  out("quorlo backup --replace copy.sqlite; mkdir folder; quorlo backup folder; ln -s copy.sqlite link");
  EXPECT_EQ(out("ls folder"), "quorlo-" + out("date +%F | tr -d '\\n'") + ".sqlite\n");
  EXPECT_THAT(complaint(std::string("quorlo backup --replace ") + kData + "private.sqlite"),
              HasSubstr("itself"));
  EXPECT_THAT(complaint("quorlo backup --replace /dev/null"), HasSubstr("no file"));
  EXPECT_THAT(complaint("quorlo backup nowhere/copy.sqlite"), HasSubstr("No such file"));
  out(std::string("rm -r ") + kData + "; quorlo restore -y link");
  EXPECT_EQ(out("quorlo list | wc -l"), "2\n");
  EXPECT_EQ(out("find . -name '*.new*' -o -name '*restored*'"), "");
}

TEST_F(BackupCommandsTest, ANameThatIsASnippetAndABackupIsAskedAbout) {
  out("quorlo add --title 2026-11-22 -t Date -a date; quorlo add -t sig -a copy.sqlite");
  out("quorlo backup copy.sqlite; quorlo remove date copy.sqlite");
  for (const std::string name : {"2026-11-22", "copy.sqlite"}) {
    EXPECT_THAT(complaint("quorlo restore --yes " + name, 2),
                AllOf(HasSubstr("--snippet"), HasSubstr("--library")));
    EXPECT_THAT(out("quorlo restore --snippet " + name), StartsWith("Restored "));
  }
  out("quorlo remove date copy.sqlite; quorlo restore --library --yes copy.sqlite");
  EXPECT_EQ(out("quorlo list | wc -l"), "2\n");
}

TEST_F(BackupCommandsTest, ADamagedLibraryIsRestoredWithItsFilesKept) {
  out("quorlo add -t Regards; quorlo backup");
  out(std::string("head -c 9000 /dev/urandom > ") + kData + "private.sqlite");
  EXPECT_THAT(complaint("quorlo list"), HasSubstr("damaged"));
  const auto backup = json::parse(out("quorlo backup --list --json"))["backups"][0];
  EXPECT_THAT(out("quorlo restore --yes " + std::string(backup["date"])), HasSubstr("was damaged"));
  EXPECT_EQ(out("quorlo list | wc -l"), "1\n");
}

}  // namespace
}  // namespace quorlo
