#include "store/upkeep/store_maintenance.h"

#include "platform/environment/time_zone.h"
#include "store/calendar_days.h"
#include "store/context/store_access.h"
#include "store/upkeep/built_in_folders.h"
#include "test_library.h"

#include <gtest/gtest.h>

#include <set>

namespace quorlo {
namespace {

using std::chrono::days;
using std::chrono::hours;
using std::chrono::seconds;
using std::chrono::sys_days;

TEST(CalendarDays, KeepTheTimeOfDayAcrossAChangeOfTheClocks) {
  using namespace std::chrono_literals;
  const Date noonInNovember = sys_days(2023y / 11 / 14) + hours(11);  // 12:00 in Berlin
  EXPECT_EQ(calendarDaysBefore(noonInNovember, 30, icuTimeZone("Europe/Berlin")),
            sys_days(2023y / 10 / 15) + hours(10));
  EXPECT_EQ(calendarDaysBefore(noonInNovember, 30, icuTimeZone("UTC")), noonInNovember - days(30));
  const Date april = sys_days(2024y / 4 / 10) + hours(10) + 123456us;
  EXPECT_EQ(calendarDaysBefore(april, 30, icuTimeZone("Europe/Berlin")),
            sys_days(2024y / 3 / 11) + hours(11) + 123456us);
}

TEST(StoreMaintenance, PurgesWhatHasBeenInTheTrashForThirtyCalendarDaysToTheSecond) {
  TestLibrary library;  // 14 November, 23:13:20 in Berlin; the clocks went back meanwhile
  const auto limit = library.environment.date - days(30) - hours(1);
  library.snippet(u"due")->setDeletionDate(limit);
  library.snippet(u"a second later")->setDeletionDate(limit + seconds(1));
  library.snippet(u"live");
  library.log.clear();
  library.controller.purgeTrash();
  EXPECT_EQ(library.titles({}), (std::vector<std::u16string>{u"a second later", u"live"}));
  EXPECT_EQ(library.log,
            std::vector<std::string>{
                "Automatically deleting trashed snippet with the name '(3 characters)' after 30 days."});
  library.queue.settle();
  EXPECT_FALSE(library.context.hasChanges());
}

TEST(StoreMaintenance, MakesEachBuiltInFolderOnceWithItsOwnUuid) {
  TestLibrary library;
  const auto older = library.folder(CategoryType::Trash, SourceType::General);
  library.controller.createBuiltInFolders();
  library.controller.createBuiltInFolders();
  const auto folders = library.controller.allFolders();
  ASSERT_EQ(folders.size(), kBuiltInFolders.size());
  std::set<std::string> uuids;
  for (std::size_t i = 0; i < folders.size(); ++i) {
    EXPECT_EQ(folders[i]->type(), static_cast<std::int64_t>(kBuiltInFolders[i]));
    uuids.insert(folders[i]->uuid());
    if (folders[i] == older) continue;
    EXPECT_EQ(folders[i]->uuid(), builtInFolderUuid(kBuiltInFolders[i]));
  }
  EXPECT_EQ(uuids.size(), folders.size());
}

TEST(StoreMaintenance, MigratesFoldersOnceTheLibraryHasOneForAllSnippets) {
  TestLibrary library;
  const auto mine = library.folder(CategoryType::Folder, SourceType::General);
  const auto shared = library.folder(CategoryType::SharedFolder, SourceType::General);
  const auto inMine = library.snippet(u"inside");
  inMine->setCategory(mine.get());
  const auto loose = library.snippet(u"loose");
  EXPECT_FALSE(library.controller.migrateFolders());
  EXPECT_EQ(library.log.back().find("ERROR: #rwg8gnm - "), 0U);

  library.controller.createBuiltInFolders();
  library.log.clear();
  EXPECT_TRUE(library.controller.migrateFolders());
  EXPECT_EQ(library.log,
            (std::vector<std::string>{"Found 10 categories to migrate", "Found 1 snippets without category",
                                      "(5 characters) has no category. Moving to All Snippets."}));
  EXPECT_EQ(mine->sourceType(), static_cast<std::int64_t>(SourceType::Folders));
  EXPECT_EQ(shared->sourceType(), static_cast<std::int64_t>(SourceType::Public));
  const auto all = library.controller.builtInFolder(CategoryType::AllSnippets);
  EXPECT_EQ(all->sourceType(), static_cast<std::int64_t>(SourceType::General));
  EXPECT_EQ(loose->category(), all);
  EXPECT_EQ(inMine->category(), mine);
  EXPECT_EQ(all->numberOfSnippets(), 2U);
  EXPECT_EQ(mine->numberOfSnippets(), 1U);
}

std::shared_ptr<QLUser> userWith(TestLibrary& library, std::int64_t chars, double minutes,
                                 std::int16_t speed) {
  const auto user = library.context.insert<QLUser>();
  user->setSavedChars(chars);
  user->setSavedMinutes(minutes);
  user->setWordsPerMinute(speed);
  return user;
}

TEST(StoreMaintenance, AddsUpStatisticsIntoTheFirstRecordAndKeepsApartWhatDoesNotFit) {
  TestLibrary library;
  EXPECT_TRUE(library.controller.mergeDuplicateUsers());
  const auto first = library.controller.currentUser();
  first->setWordsPerMinute(40);
  first->setSavedChars(10);
  userWith(library, 100, 1.5, 50);
  const auto fast = userWith(library, 7, 1, 32'700);
  userWith(library, 1, 0.5, 10);
  EXPECT_TRUE(library.controller.mergeDuplicateUsers());
  EXPECT_EQ(library.context.fetch<QLUser>({}).value(), (std::vector{first, fast}));
  EXPECT_EQ(first->savedChars(), 111);
  EXPECT_EQ(first->savedMinutes(), 2);
  EXPECT_EQ(first->wordsPerMinute(), 100);
  EXPECT_EQ(fast->savedChars(), 7);
  EXPECT_FALSE(library.context.hasChanges());
  ASSERT_EQ(library.log.size(), 3U);
  EXPECT_EQ(library.log[0].find("WARNING: #32dd8fd; Multiple Users found. "), 0U);
  EXPECT_EQ(library.log[1].find("ERROR: #uUf489c - found duplicated users: "), 0U);
}

TEST(StoreMaintenance, MergesFoldersOfEveryKindAndSavesTheResult) {
  TestLibrary library;
  const auto folderOf = [&library](CategoryType type, SourceType source, int day) {
    const auto folder = library.folder(type, source);
    folder->setUuid("same");
    folder->setCreationDate(Date(days(day)));
    return folder;
  };
  const auto young = folderOf(CategoryType::Code, SourceType::General, 2);
  const auto old = folderOf(CategoryType::Code, SourceType::General, 1);
  const auto mine = folderOf(CategoryType::Folder, SourceType::Folders, 1);
  const auto mineElsewhere = folderOf(CategoryType::Folder, SourceType::Folders, 2);
  mineElsewhere->setTitle(u"Letters");
  const auto snippet = library.snippet(u"a");
  snippet->setCategory(mineElsewhere.get());
  library.environment.date += hours(1);
  EXPECT_TRUE(library.controller.mergeDuplicateFolders());
  EXPECT_TRUE(young->isDeleted());
  EXPECT_TRUE(mineElsewhere->isDeleted());
  EXPECT_EQ(library.controller.allFolders(), (std::vector{old, mine}));
  EXPECT_EQ(snippet->category(), mine);
  EXPECT_EQ(snippet->modifiedDate(), library.environment.date);
  EXPECT_EQ(library.log, (std::vector<std::string>{"Deleting duplicate folder (4 characters)",
                                                   "Deleting duplicate folder (7 characters)"}));
  EXPECT_FALSE(library.context.hasChanges());
}

TEST(StoreMaintenance, MakesStoredEmptyAbbreviationsNilOnce) {
  TestLibrary library;
  const auto wrong = library.snippet(u"wrong");
  library.snippet(u"right", u"ok");
  library.snippet(u"without");
  StoreAccess::setEmptyAbbreviation(*wrong);
  EXPECT_EQ(wrong->abbreviation(), u"");
  library.controller.save();
  library.controller.fixEmptyAbbreviations();
  EXPECT_EQ(library.log, (std::vector<std::string>{"Found 1 snippets with wrong empty abbreviation",
                                                   "Automatically fixing (5 characters)"}));
  EXPECT_EQ(library.titles({.predicate = QLSnippet::kAbbreviation.isNil()}),
            (std::vector<std::u16string>{u"wrong", u"without"}));
  EXPECT_TRUE(library.context.hasChanges());
  library.controller.fixEmptyAbbreviations();
  EXPECT_EQ(library.log.back(), "Found 0 snippets with wrong empty abbreviation");
}

TEST(StoreMaintenance, MarksOnlyTitlesThatAreThere) {
  TestLibrary library;
  const auto titled = library.snippet(u"Letter");
  const auto untitled = library.snippet(u"");
  library.controller.markTitlesAsCustom();
  EXPECT_TRUE(titled->titleIsCustom());
  EXPECT_FALSE(untitled->titleIsCustom());
}

}  // namespace
}  // namespace quorlo
