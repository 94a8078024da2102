#include "store/context/managed_object_context.h"

#include "description.h"
#include "fakes/temporary_directory.h"
#include "store/context/record_set.h"
#include "store/sqlite/file/store_opening.h"
#include "store/sqlite/sqlite_record_store.h"
#include "test_library.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <stdexcept>

namespace quorlo {
namespace {

std::vector<std::string_view> names(const std::vector<const Property*>& properties) {
  std::vector<std::string_view> found;
  for (const auto* each : properties) found.push_back(each->name);
  return found;
}

// What a context promises, whether it stores its records or not. After each test in a file, what is read from
// it is what was in memory.
enum class Storage { memory, file };

class ContextContract : public testing::TestWithParam<Storage> {
 protected:
  std::unique_ptr<TestLibrary> open() const {
    if (GetParam() == Storage::memory) return std::make_unique<TestLibrary>();
    auto database = openStore(directory_.path(), {Date{}});
    if (!database) throw std::runtime_error(database.error().message);
    auto opened =
        std::make_unique<TestLibrary>(std::make_unique<SqliteRecordStore>(std::move(database).value()));
    EXPECT_TRUE(opened->context.load());
    EXPECT_FALSE(opened->context.hasChanges());
    return opened;
  }

  void TearDown() override {
    if (GetParam() == Storage::memory) return;
    ASSERT_TRUE(library->context.save());
    const auto inMemory = Description::of(library->context);
    library.reset();
    EXPECT_EQ(Description::of(open()->context), inMemory);
  }

  TemporaryDirectory directory_{TemporaryDirectory::quickParent()};
  std::unique_ptr<TestLibrary> library = open();
};
INSTANTIATE_TEST_SUITE_P(Context, ContextContract, testing::Values(Storage::memory, Storage::file),
                         [](const auto& each) { return each.param == Storage::file ? "File" : "Memory"; });

TEST_P(ContextContract, TellsTheChangesOfATurnTogetherEachRecordInOneList) {
  const auto kept = library->snippet(u"kept");
  const auto doomed = library->snippet(u"doomed");
  library->queue.runDue();

  std::vector<ChangeSet> heard;
  const auto subscription =
      library->context.observeObjectsDidChange([&](const ChangeSet& changes) { heard.push_back(changes); });
  kept->setTitle(u"x");
  kept->setUseCount(1);
  doomed->setTitle(u"y");
  library->context.deleteObject(*doomed);
  const auto fresh = library->snippet(u"fresh");
  library->context.deleteObject(*library->snippet(u"came and went"));
  EXPECT_TRUE(heard.empty());
  library->queue.runDue();
  ASSERT_EQ(heard.size(), 1U);
  using Records = std::vector<std::shared_ptr<ManagedObject>>;
  EXPECT_EQ(heard[0].inserted, Records{fresh});
  EXPECT_EQ(heard[0].updated, Records{kept});
  EXPECT_EQ(heard[0].deleted, Records{doomed});

  fresh->setTitle(u"again");
  library->context.processPendingChanges();
  library->queue.runDue();
  ASSERT_EQ(heard.size(), 2U);
  EXPECT_EQ(heard[1].updated, Records{fresh});
}

TEST(Context, KnowsWhatASaveHasToStore) {
  TestLibrary library;
  const auto snippet = library.snippet(u"a");
  EXPECT_TRUE(snippet->changedProperties().empty());
  ASSERT_TRUE(library.context.save());
  EXPECT_FALSE(library.context.hasChanges());

  snippet->setUseCount(1);
  snippet->setDeletionDate(Date{});
  snippet->setUseCount(2);
  EXPECT_EQ(names(snippet->changedProperties()), (std::vector<std::string_view>{"useCount", "deletionDate"}));
  library.context.deleteObject(*library.snippet(u"came and went"));
  ASSERT_TRUE(library.context.save());
  ASSERT_EQ(library.commits.size(), 2U);
  EXPECT_TRUE(library.commits[1].inserted.empty());
  EXPECT_EQ(library.commits[1].updated.size(), 1U);
  EXPECT_TRUE(library.commits[1].deleted.empty());
  EXPECT_TRUE(snippet->changedProperties().empty());
}

TEST_P(ContextContract, KeepsBothSidesOfARelationshipInStep) {
  const auto first = library->folder(CategoryType::Folder);
  const auto second = library->folder(CategoryType::Folder);
  const auto app = library->app("org.example.Editor");
  const auto snippet = library->snippet(u"a");
  snippet->setCategory(first.get());
  snippet->setCategory(second.get());
  EXPECT_TRUE(first->snippets().empty());
  EXPECT_TRUE(second->snippets().contains(snippet.get()));

  snippet->addAllowedApp(*app);
  snippet->addBlockedSnippet(*app);
  snippet->removeAllowedApp(*app);
  EXPECT_TRUE(app->allowedSnippets().empty());
  EXPECT_TRUE(app->blockedApps().contains(snippet.get()));

  TestLibrary other;
  snippet->setCategory(other.folder(CategoryType::Folder).get());
  EXPECT_EQ(snippet->category(), second) << "a record of another context was taken";
}

TEST_P(ContextContract, NullifiesRelationshipsOnDeletionAndMarksTheOtherSide) {
  const auto folder = library->folder(CategoryType::Folder);
  const auto app = library->app("org.example.Editor");
  const auto snippet = library->snippet(u"a");
  snippet->setCategory(folder.get());
  snippet->addAllowedApp(*app);
  folder->addBlockedApp(*app);
  ASSERT_TRUE(library->context.save());

  library->context.deleteObject(*app);
  EXPECT_TRUE(snippet->allowedApps().empty());
  EXPECT_TRUE(folder->blockedApps().empty());
  EXPECT_EQ(names(snippet->changedProperties()), std::vector<std::string_view>{"allowedApps"});

  library->context.deleteObject(*folder);
  EXPECT_EQ(snippet->category(), nullptr);
  EXPECT_EQ(names(snippet->changedProperties()), (std::vector<std::string_view>{"allowedApps", "category"}));
}

TEST_P(ContextContract, LeavesRecordsSafeToHoldAfterDeletionAndAfterItsOwnEnd) {
  const auto folder = library->folder(CategoryType::Folder);
  const auto deleted = library->snippet(u"deleted", u"del");
  const auto held = library->snippet(u"held", u"hold");
  held->setCategory(folder.get());
  library->context.deleteObject(*deleted);
  EXPECT_TRUE(deleted->isDeleted());
  EXPECT_EQ(deleted->managedObjectContext(), nullptr);
  deleted->setAbbreviation(u"x");
  deleted->setCategory(folder.get());
  EXPECT_EQ(deleted->category(), nullptr);
  EXPECT_EQ(library->context.liveSnippet(u"x").value(), nullptr);
  library->context.deleteObject(*deleted);

  library = open();
  EXPECT_EQ(held->category(), nullptr);
  held->setAbbreviation(u"y");
  held->moveToTrash();
}

TEST(RecordSet, HoldsWhatASetHoldsThroughGrowthAndShrinking) {
  std::mt19937 random(1);
  std::vector<int> values(60);
  RecordSet<int> records;
  std::set<int*> expected;
  for (int step = 0; step < 4000; ++step) {
    int* const value = &values[random() % values.size()];
    const bool grows = random() % 100 < (step / 500 % 2 == 0 ? 80U : 20U);
    if (grows) {
      EXPECT_EQ(records.add(value), expected.insert(value).second);
    } else {
      EXPECT_EQ(records.remove(value), expected.erase(value) == 1);
    }
    ASSERT_EQ(std::set<int*>(records.begin(), records.end()), expected);
    ASSERT_EQ(records.size(), expected.size());
  }
}

}  // namespace
}  // namespace quorlo
