#include "import/library_import.h"

#include "fakes/fake_environment.h"
#include "fakes/fake_user_defaults.h"
#include "fakes/one_thread_queue.h"
#include "fakes/temporary_directory.h"
#include "import/work_progress.h"
#include "store/context/background_context.h"
#include "store/context/change_log.h"
#include "store/history/persistent_history_observer.h"
#include "store/persistence_controller.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/sqlite/file/store_opening.h"
#include "text/utf.h"
#include "x11/pumped_queue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <optional>

namespace quorlo {
namespace {

using testing::HasSubstr;

constexpr std::size_t kRecords = 3000;  // several parts of a save and of what is taken over

// The library of a file as the program has it open, and an import whose clock the test hears: it is asked
// once when the import begins and once when it saves.
struct BackgroundImportTest : testing::Test {
  static Date systemNow() { return std::chrono::system_clock::now(); }

  BackgroundImportTest() {
    environment.data = directory.path();
    controller = std::move(PersistenceController::open(queue, environment, {}).value());
    file = directory / kStoreFileName;
    context().insert<QLSnippet>()->setAbbreviation(u"a7");
    imports.emplace(LibraryImport::Dependencies{queue, background, *controller, file, [this] {
                                                  if (onClock) onClock(++clockReadings);
                                                  return systemNow();
                                                }});
    for (std::size_t i = 0; i < kRecords; ++i) {
      const auto number = toUtf16(std::to_string(i));
      data->snippets.push_back(
          {.title = u"t" + number, .abbreviation = u"a" + number, .text = {}, .folder = 0});
    }
    data->folders = {u"New"};
  }

  ManagedObjectContext& context() { return controller->managedObjectContext(); }
  std::size_t snippets() {
    return context().count(Entity::snippet, QLSnippet::kDeletionDate.isNil()).value();
  }
  std::size_t snippetsInFile() const {
    const auto other = openBackgroundContext(file, {.now = systemNow});
    return other.value()->count(Entity::snippet, QLSnippet::kDeletionDate.isNil()).value();
  }

  void begin() {
    imports->importData(data, {}, [this](const auto& result) { outcome = result; });
  }
  bool ends() {
    return queue.pumpUntil([this] { return outcome.has_value(); });
  }

  TemporaryDirectory directory{TemporaryDirectory::quickParent()};
  FakeEnvironment environment;
  FakeUserDefaults defaults;
  PumpedQueue queue;
  OneThreadQueue background;
  std::unique_ptr<PersistenceController> controller;
  std::filesystem::path file;
  std::shared_ptr<ImportData> data = std::make_shared<ImportData>();
  std::function<void(int)> onClock;  // on the thread of the import
  std::atomic<int> clockReadings = 0;
  std::optional<LibraryImport> imports;
  std::optional<Result<ImportReport>> outcome;
};

TEST_F(BackgroundImportTest, BringsTheRecordsIntoTheMainContextInOneStepAndTakesThemBack) {
  PersistentHistoryObserver observer(AppTarget::app, {queue, defaults, context(), file, systemNow});
  ASSERT_TRUE(observer.startObserving());
  std::vector<std::size_t> told;
  begin();
  EXPECT_FALSE(context().hasChanges());  // saved before
  const auto observation = context().observeObjectsDidChange(
      [&told](const ChangeSet& changes) { told.push_back(changes.inserted.size()); });
  ASSERT_TRUE(ends());
  ASSERT_TRUE(*outcome) << outcome->error().message;
  EXPECT_EQ(outcome->value().refusedAbbreviations, 1U);
  ASSERT_TRUE(queue.pumpUntil([this] { return snippets() == kRecords + 1; }));
  queue.pump();
  EXPECT_EQ(told, std::vector<std::size_t>{kRecords + 1});  // with the folder
  EXPECT_FALSE(context().hasChanges());
  const auto first = context().liveSnippet(u"a0").value();
  EXPECT_EQ(first->category()->title(), u"New");
  EXPECT_EQ(first->category()->snippets().size(), kRecords);

  first->setTitle(u"mine");
  std::optional<UndoneImport> undone;
  imports->undo(std::make_shared<const ImportReport>(outcome->value()),
                [&undone](const auto& result) { undone = result.value(); });
  ASSERT_TRUE(queue.pumpUntil([&] { return undone && snippets() == 2; }));
  EXPECT_EQ(undone->keptSnippets, 1U);
  EXPECT_EQ(first->title(), u"mine");
}

TEST_F(BackgroundImportTest, LeavesNothingInTheFileWhenItIsCancelledAtAnyStage) {
  for (const int stage : {0, 1, 2}) {
    outcome.reset();
    clockReadings = 0;
    onClock = [this, stage](int reading) {
      if (reading == stage) imports->cancel();
    };
    begin();
    if (stage == 0) imports->cancel();
    ASSERT_TRUE(ends());
    EXPECT_FALSE(*outcome) << stage;
    EXPECT_EQ(snippetsInFile(), 1U) << stage;
    EXPECT_FALSE(imports->isRunning());
  }
}

TEST_F(BackgroundImportTest, ImportsOnlyOneAtATimeAndNothingMoreOnceItIsGone) {
  std::atomic<bool> mayGoOn = false;
  onClock = [&mayGoOn](int) { mayGoOn.wait(false); };
  begin();
  std::optional<Result<ImportReport>> second;
  imports->importFiles({}, {}, [&second](const auto& result) { second = result; });
  ASSERT_TRUE(queue.pumpUntil([&] { return second.has_value(); }));
  EXPECT_THAT(second->error().message, HasSubstr("Another import is under way"));

  imports->cancel();  // as the destructor does, but before the thread goes on
  mayGoOn = true;
  mayGoOn.notify_all();
  imports.reset();
  EXPECT_EQ(snippetsInFile(), 1U);
  queue.pump();
  EXPECT_FALSE(outcome);
}

}  // namespace
}  // namespace quorlo
