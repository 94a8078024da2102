#include "fakes/fake_user_defaults.h"
#include "fakes/temporary_directory.h"
#include "store/background_context.h"
#include "store/history/persistent_history_observer.h"
#include "store/ql_snippet.h"
#include "store/sqlite/child_process.h"
#include "store/sqlite/store_opening.h"
#include "text/utf.h"
#include "view_context.h"
#include "x11/pumped_queue.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

namespace quorlo {
namespace {

Date systemNow() {
  return std::chrono::system_clock::now();
}

// Gives the only snippet the title "1", "2", ... in one save each, up to each number that it is told.
void countInTitle(const std::filesystem::path& file, const Channel& parent) {
  std::unique_ptr<ManagedObjectContext> context;
  int count = 0;
  while (const auto number = parent.number()) {
    if (!context) {
      context = openBackgroundContext(
                    file, {.name = "other_context", .transactionAuthor = "other", .now = systemNow})
                    .value();
    }
    const auto snippet = context->fetch<QLSnippet>({}).value().front();
    while (count < *number) {
      snippet->setTitle(toUtf16(std::to_string(++count)));
      if (!context->save()) return;
    }
    parent.send(count);
  }
}

TEST(TwoProcesses, SeeWhatEitherSavesWhileBothKeepSaving) {
  const TemporaryDirectory directory;
  const auto file = directory / std::string(kStoreFileName);
  ChildProcess other([&file](const Channel& parent) { countInTitle(file, parent); });

  ASSERT_TRUE(openStore(directory.path(), {.now = systemNow()}));
  PumpedQueue queue;
  FakeUserDefaults defaults;
  ManagedObjectContext view(queue, viewConfiguration(file));
  ASSERT_TRUE(view.load());
  const auto snippet = view.insert<QLSnippet>();
  ASSERT_TRUE(view.save());
  PersistentHistoryObserver observer(
      AppTarget::app,
      {.mainQueue = queue, .defaults = defaults, .viewContext = view, .storeFile = file, .now = systemNow});
  ASSERT_TRUE(observer.startObserving());
  for (const int count : {1, 50, 51}) {
    other.channel().send(count);
    for (int use = 0; use < count; ++use) {
      snippet->setUseCount(snippet->useCount() + 1);
      ASSERT_TRUE(view.save());
    }
    EXPECT_TRUE(queue.pumpUntil([&] { return snippet->title() == toUtf16(std::to_string(count)); }));
    EXPECT_EQ(other.channel().number(), count);
  }
  ManagedObjectContext anew(queue, viewConfiguration(file));
  ASSERT_TRUE(anew.load());
  const auto read = anew.fetch<QLSnippet>({}).value().front();
  EXPECT_EQ(read->title(), u"51");
  EXPECT_EQ(read->useCount(), 102);
}

}  // namespace
}  // namespace quorlo
