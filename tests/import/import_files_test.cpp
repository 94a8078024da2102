#include "import/file_import.h"

#include "fakes/temporary_directory.h"
#include "import/snippet_importer.h"
#include "import/work_progress.h"
#include "store/test_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace quorlo {
namespace {

using testing::AllOf;
using testing::HasSubstr;

constexpr const char* kLibrary = R"({
  "snippets": [{"uuid": "A", "title": "Signature", "text": "Regards", "abbreviation": "sig"},
               {"uuid": "B", "text": "Taken\nand derived", "abbreviation": "tkn"}],
  "folders": [{"uuid": "F", "title": "Letters", "snippets": ["A"]}],
  "excludedApplications": ["org.example.Terminal"]
})";

struct ImportFilesTest : testing::Test {
  ImportFilesTest() {
    library.snippet(u"Holder", u"tkn");
    EXPECT_TRUE(context.save().ok());
    library.commits.clear();
  }

  std::filesystem::path file(const std::string& name, const std::string& content) {
    std::ofstream(directory / name, std::ios::binary) << content;
    return directory / name;
  }
  Result<ImportReport> import(const std::filesystem::path& path, const ImportOptions& options = {}) {
    return importFile(path, std::nullopt, options, context, progress);
  }

  TemporaryDirectory directory{TemporaryDirectory::quickParent()};
  TestLibrary library;
  ManagedObjectContext& context = library.context;
  WorkProgress progress;
};

TEST_F(ImportFilesTest, TellsKindsByTheNameAndElseByTheContent) {
  const auto samples = std::filesystem::path(QUORLO_IMPORT_SAMPLES);
  const auto sample = [&samples](const char* name) { return samples / name; };
  const auto copy = [&](const char* from, const char* to) {
    std::filesystem::copy_file(sample(from), directory / to);
    return directory / to;
  };
  const std::filesystem::path accepted[] = {
      file("table.CSV", "title,abbreviation,text\na,b,c\n"),
      file("library.json", kLibrary),
      file("library", kLibrary),
      sample("letters.textexpander"),
      sample("library.textexpanderbackup"),
      sample("words-binary.typeit4me"),
      sample("greeting.textClipping"),
      copy("letters-binary.textexpander", "settings.plist"),
      copy("words.typeit4me", "words.txt"),
  };
  for (const auto& each : accepted) {
    const auto report = import(each, {.skipDuplicates = false});
    ASSERT_TRUE(report) << each << report.error().message;
    EXPECT_GT(report.value().addedSnippets + report.value().presentSnippets, 0U) << each;
  }
  EXPECT_FALSE(isTable(directory / "words.txt"));
  EXPECT_TRUE(isTable(directory / "none.csv"));
}

TEST_F(ImportFilesTest, RefusesWhatItDoesNotKnowAndSaysWhatItKnows) {
  const struct {
    std::filesystem::path file;
    std::string reason;
  } cases[] = {
      {file("other.json", R"({"name": "somebody's settings", "version": 3})"), ".textexpanderbackup"},
      {file("list.json", "[1, 2]"), ".textexpanderbackup"},
      {file("picture.png", "\x89PNG\r\n"), ".textexpanderbackup"},
      {file("other.plist", "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict/></plist>"),
       ".textexpanderbackup"},
      {file("damaged.json", R"({"snippets": [{"text": "a")"), "Line 1, column"},
      {file("wide.json", {"[\0]\0", 4}), "UTF-16"},
      {file("damaged.textexpander", "bplist00 and nothing else"), ""},
      {directory / "none.quorlo", "cannot be read"},
      {directory.path(), "cannot be read"},
  };
  for (const auto& each : cases) {
    const auto report = import(each.file);
    ASSERT_FALSE(report) << each.file;
    EXPECT_THAT(report.error().message,
                AllOf(HasSubstr(each.file.filename().string()), HasSubstr(each.reason)));
    EXPECT_FALSE(context.hasChanges()) << each.file;
  }
  EXPECT_TRUE(library.commits.empty());
  std::filesystem::create_directory(directory / "all.textexpanderbackup");
  EXPECT_THAT(import(directory / "all.textexpanderbackup").error().message, HasSubstr("“group_”"));
  for (const char* empty : {"{}", " [ ]\n", "\xEF\xBB\xBF{\"version\": 1}"}) {
    EXPECT_TRUE(import(file("empty.json", empty))) << empty;
  }
}

TEST_F(ImportFilesTest, BringsBackWhatLiesInTheTrash) {
  const auto path = file("my.quorlo", kLibrary);
  ASSERT_TRUE(import(path));
  const auto signature = library.controller.snippet("A");
  const auto taken = library.controller.snippet("B");
  taken->setAbbreviation(u"new");
  signature->moveToTrash();
  taken->moveToTrash();
  library.snippet(u"Other", u"new");
  context.deleteObject(*library.controller.folder("F"));
  ASSERT_TRUE(context.save());

  const auto trial = import(path, {.isDryRun = true}).value();
  EXPECT_EQ(summary(trial),
            u"1 folder would be added. 2 snippets would be taken out of the trash. 1 snippet has "
            u"no abbreviation now.");
  library.commitResult = Error{"The disk is full."};
  EXPECT_FALSE(import(path));
  EXPECT_TRUE(signature->deletionDate() && taken->deletionDate());
  EXPECT_EQ(taken->abbreviation(), u"new");
  library.commitResult = {};

  const auto report = import(path).value();
  EXPECT_EQ(report.presentSnippets, 0U);
  EXPECT_THAT(report.restored, testing::ElementsAre("A", "B"));
  EXPECT_TRUE(signature->isLive() && taken->isLive());
  EXPECT_EQ(signature->abbreviation(), u"sig");
  EXPECT_EQ(signature->category(), library.controller.folder("F"));
  EXPECT_EQ(taken->abbreviation(), u"");

  EXPECT_EQ(undoImport(report, context, progress).value().removedSnippets, 2U);
  EXPECT_TRUE(signature->deletionDate() && taken->deletionDate());
}

TEST_F(ImportFilesTest, TakesItsOwnExportsByTheirUuids) {
  const auto path = file("my.quorlo", kLibrary);
  const auto report = import(path).value();
  EXPECT_EQ(report.addedSnippets, 2U);
  EXPECT_EQ(report.refusedAbbreviations, 1U);
  EXPECT_EQ(report.notices.front().snippet, u"Taken");
  EXPECT_EQ(library.controller.snippet("A")->category(), library.controller.folder("F"));
  EXPECT_EQ(library.commits.size(), 1U);

  const auto again = import(path).value();
  EXPECT_TRUE(again.addedNothing());
  EXPECT_EQ(again.presentSnippets, 2U);

  EXPECT_EQ(undoImport(report, context, progress).value().removedSnippets, 2U);
  EXPECT_EQ(library.controller.folder("F"), nullptr);
  EXPECT_FALSE(context.hasApp("org.example.Terminal", 0).value());

  library.commitResult = Error{"The disk is full."};
  EXPECT_FALSE(import(path));
  EXPECT_FALSE(context.hasChanges());
  EXPECT_EQ(library.controller.snippet("A"), nullptr);
  library.commitResult = {};

  const auto into = import(path, {.destination = ImportIntoTitled{u"All of it"}}).value();
  EXPECT_EQ(library.controller.folder(into.destination())->snippets().size(), 2U);
  EXPECT_EQ(library.controller.folder("F"), nullptr);
}

TEST_F(ImportFilesTest, TakesSeveralFilesInOneSaveAndRefusesTheOthersByName) {
  const auto report =
      importFiles({file("a.csv", "title,text\none,1\n"), directory / "none.csv", file("b.json", kLibrary)},
                  std::nullopt, {}, context, progress)
          .value();
  EXPECT_EQ(report.addedSnippets, 3U);
  ASSERT_EQ(report.refusedFiles.size(), 1U);
  EXPECT_THAT(report.refusedFiles.front().message, HasSubstr("none.csv"));
  EXPECT_EQ(library.commits.size(), 1U);
}

}  // namespace
}  // namespace quorlo
