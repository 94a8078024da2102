#include "cli/shell_test.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace quorlo {
namespace {

using nlohmann::json;
using ::testing::AllOf;
using ::testing::HasSubstr;

class FileCommandsTest : public ShellTest {
 protected:
  std::string snippets() const { return out("quorlo list --sort abbreviation | cut -f1-3"); }
};

TEST_F(FileCommandsTest, ATableIsImportedAsItsColumnsAreNamed) {
  const struct {
    const char* table;
    const char* options;
    const char* snippets;
  } cases[] = {
      {"title,abbreviation,text\nSig,sig,Regards\n", "", "sig\tSig\t\n"},
      {"Kürzel;Inhalt\nsig;Regards\n", "--folder Old", "sig\tRegards\tOld\n"},
      {"a;b;c\nRegards;-;sig\n", "--header --text 1 --abbreviation 3", "sig\tRegards\t\n"},
      {"Body|Key\nRegards|sig\n", "--separator bar --text body --abbreviation Key", "sig\tRegards\t\n"},
      {"2023,3,2\nsig,-,Regards\n", "--text 2 --abbreviation 2023", "sig\tRegards\t\n"},
      {"sig#Regards\nbye#Goodbye\n", "--no-header --separator '#' --abbreviation 1 --text 2",
       "bye\tGoodbye\t\nsig\tRegards\t\n"},
  };
  for (const auto& [table, options, expected] : cases) {
    out("rm -rf .local");
    file("table.csv", table);
    out(std::string("quorlo import table.csv ") + options);
    EXPECT_EQ(snippets(), expected) << table << options;
  }
}

TEST_F(FileCommandsTest, WhatAnImportCannotKeepIsSaidAndADryRunChangesNothing) {
  out("quorlo add -a sig -t Other");
  file("table.csv", "abbreviation,text\nsig,Regards\nbye,Goodbye\n");
  const auto tried = run("quorlo import table.csv --dry-run");
  EXPECT_EQ(tried.status, 0);
  EXPECT_THAT(tried.out, HasSubstr("2 snippets would be added"));
  EXPECT_EQ(snippets(), "sig\tOther\t\n");
  const auto imported = run("quorlo import table.csv");
  EXPECT_THAT(imported.out, HasSubstr("2 snippets were added"));
  EXPECT_THAT(imported.err, AllOf(HasSubstr("Regards"), HasSubstr("sig")));
  const auto again = json::parse(out("quorlo import table.csv --json"));
  EXPECT_EQ(again["added"], 0);
  EXPECT_EQ(again["duplicates"], 2);
}

TEST_F(FileCommandsTest, ATableLosesNothingInSilence) {
  file("table.csv", "sep=;\nNotes;abbr;text\nold;sig;Regards; Ada\n;bye;\n;\xC3\xBC;\"Two\nlines\"\n");
  const auto tried = run("quorlo import table.csv --dry-run");
  EXPECT_EQ(tried.out, "2 snippets would be added.\nRegards\tsig\tRegards\nTwo\t\xC3\xBC\tTwo⏎lines\n");
  for (const char* said : {"line 2 is taken as the names", "Left out: “Notes”", "line 3 has more fields",
                           "line 4 has an abbreviation but no text"}) {
    EXPECT_THAT(tried.err, HasSubstr(said));
  }
  EXPECT_EQ(json::parse(out("quorlo import table.csv --dry-run --json"))["examples"][0]["abbreviation"],
            "sig");

  file("names.csv", "name,Ada Lovelace\naddr,12 High Street\n");
  EXPECT_THAT(complaint("quorlo import names.csv"), HasSubstr("--no-header"));
  out("quorlo import names.csv --no-header");
  EXPECT_EQ(snippets(), "addr\t12 High Street\t\nname\tAda Lovelace\t\n");

  out("quorlo export library.json; quorlo remove addr");
  EXPECT_EQ(out("quorlo import library.json"),
            "1 snippet was taken out of the trash. 1 snippet is in the library already.\n");
  EXPECT_EQ(snippets(), "addr\t12 High Street\t\nname\tAda Lovelace\t\n");
  out("rm -rf .local; quorlo import library.json; quorlo edit addr -t Elsewhere");
  EXPECT_EQ(snippets(), "addr\tElsewhere\t\nname\tAda Lovelace\t\n") << "titles follow their texts";
}

TEST_F(FileCommandsTest, ThousandsOfNoticesAreCounted) {
  out("{ echo abbreviation,text; for i in {1..1000}; do echo same,text $i; done; } > table.csv");
  const auto imported = run("quorlo import table.csv");
  EXPECT_LT(std::ranges::count(imported.err, '\n'), 60);
  EXPECT_THAT(imported.err, HasSubstr("more notices; --json lists them all."));
  EXPECT_EQ(json::parse(out("quorlo import table.csv --keep-duplicates --json"))["withoutAbbreviation"],
            1000);
}

TEST_F(FileCommandsTest, AnImportIsTakenBackByAnotherProcessButForWhatWasTouched) {
  file("table.csv", "abbreviation,text\nsig,Regards\nbye,Goodbye\n");
  EXPECT_THAT(complaint("quorlo import --undo"), HasSubstr("no import"));
  out("quorlo import table.csv --folder Old");
  EXPECT_EQ(out("quorlo import table.csv --folder Old"), "Nothing was added. 2 duplicates were skipped.\n");
  EXPECT_THAT(out("quorlo import table.csv --keep-duplicates -n"), HasSubstr("2 snippets would be added"));
  out("quorlo edit sig --title Mine");
  EXPECT_EQ(out("quorlo import --undo"),
            "1 snippet was removed. 1 snippet has been changed or used since and stays.\n");
  EXPECT_EQ(snippets(), "sig\tMine\tOld\n");
  EXPECT_THAT(complaint("quorlo import --undo"), HasSubstr("no import"));
}

TEST_F(FileCommandsTest, APipeIsImportedByItsContentOrItsFormat) {
  out("quorlo add -a sig -t Regards; quorlo export > library.json; rm -rf .local");
  out("cat library.json | quorlo import -");
  EXPECT_EQ(snippets(), "sig\tRegards\t\n");
  out("printf 'abbreviation;text\\nbye;[Goodbye]\\n' | quorlo import -");
  out("printf 'text\\n[1]\\n' | quorlo import - --format csv");
  EXPECT_EQ(snippets(), "bye\t[Goodbye]\t\nsig\tRegards\t\n\t[1]\t\n");
  EXPECT_EQ(run("printf 'a;b' | quorlo import - --format json").status, 1);
}

TEST_F(FileCommandsTest, FilesAndColumnsThatCannotBeReadAreRefusedWithoutALibraryBegun) {
  file("table.csv", "abbreviation,text\nsig,Regards\n");
  file("broken.json", "{\"snippets\": [{\"text\": 1}]}");
  const struct {
    const char* arguments;
    int status;
    const char* said;
  } cases[] = {
      {"nowhere.csv", 1, "nowhere.csv"},
      {"broken.json", 1, "snippets[0].text"},
      {"table.csv --text Body", 1, "Its columns are: abbreviation, text"},
      {"table.csv --text 7", 1, "7"},
      {"table.csv --text 0", 2, "counted from 1"},
      {"table.csv --no-header --text text", 1, "give the number"},
      {"table.csv --separator ab", 2, "separator"},
      {"table.csv --folder ''", 1, "name"},
      {"", 2, "files"},
  };
  for (const auto& [arguments, status, said] : cases) {
    EXPECT_THAT(complaint(std::string("quorlo import ") + arguments, status), HasSubstr(said)) << arguments;
  }
  EXPECT_EQ(out("quorlo list"), "");
  const auto some = run("quorlo import table.csv broken.json");
  EXPECT_EQ(some.status, 1);
  EXPECT_THAT(some.out, HasSubstr("1 snippet was added"));
  EXPECT_THAT(some.err, HasSubstr("broken.json"));
}

TEST_F(FileCommandsTest, AnExportMovesTheLibraryToAnotherHome) {
  out("quorlo add -a sig -t $'Regards\\nAda' -f Letters; quorlo add -a bye -t 'Good\tbye'; quorlo add -t gone -a x");
  out("quorlo remove x");
  EXPECT_EQ(out("quorlo export library.json"), "Exported 2 snippets to library.json\n");
  EXPECT_EQ(out("quorlo export"), content("library.json"));
  const auto before = out("quorlo list");
  out("rm -rf .local; quorlo import library.json");
  EXPECT_EQ(out("quorlo list"), before) << "uuids and folders, too";

  out("quorlo export --folder Letters --format csv > letters.csv; rm -rf .local; quorlo import letters.csv");
  EXPECT_EQ(out("quorlo show sig --text"), "Regards\nAda\n");
  EXPECT_EQ(json::parse(out("quorlo export one.json -s sig --json"))["snippets"], 1);
  EXPECT_EQ(out("quorlo export one.json -s sig"), "Exported 1 snippet to one.json\n");
  EXPECT_THAT(complaint("quorlo export library.txt", 2), HasSubstr("--format"));
  EXPECT_THAT(complaint("quorlo export --json", 2), HasSubstr("name a file"));
  EXPECT_THAT(complaint("quorlo export /dev/full --format csv"), HasSubstr("/dev/full"));
  const auto earlier = content("library.json");
  EXPECT_THAT(complaint("rm -rf .local; quorlo export library.json"), HasSubstr("no library"));
  EXPECT_EQ(content("library.json"), earlier);
}

TEST_F(FileCommandsTest, CtrlCDuringAnImportLeavesNothingBehind) {
  out("quorlo add -t first");
  out("{ echo text; seq 400000; } > long.csv");
  const auto stopped = run("quorlo import long.csv & sleep 0.3; kill -INT $!; wait $!");
  EXPECT_THAT(stopped.err, HasSubstr("Nothing was imported"));
  EXPECT_EQ(stopped.status, 130);
  EXPECT_EQ(snippets(), "\tfirst\t\n");
}

}  // namespace
}  // namespace quorlo
