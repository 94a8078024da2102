#include "fakes/temporary_directory.h"
#include "observed_library.h"
#include "store/records/ql_snippet.h"
#include "store/sqlite/child_process.h"
#include "text/utf.h"

#include <gtest/gtest.h>

#include <string>

namespace quorlo {
namespace {

// Gives the only snippet the title "1", "2", ... in one save each, up to each number that it is told.
void countInTitle(const std::filesystem::path& directory, const Channel& parent) {
  std::unique_ptr<ManagedObjectContext> context;
  int count = 0;
  while (const auto number = parent.number()) {
    if (!context) context = openElsewhere(directory);
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
  ChildProcess other([&](const Channel& parent) { countInTitle(directory.path(), parent); });

  ObservedLibrary library(directory.path());
  const auto snippet = library.view.insert<QLSnippet>();
  ASSERT_TRUE(library.view.save());
  ASSERT_TRUE(library.observer.startObserving());
  for (const int count : {1, 50, 51}) {
    other.channel().send(count);
    for (int use = 0; use < count; ++use) {
      snippet->setUseCount(snippet->useCount() + 1);
      ASSERT_TRUE(library.view.save());
    }
    EXPECT_TRUE(library.queue.pumpUntil([&] { return snippet->title() == toUtf16(std::to_string(count)); }));
    EXPECT_EQ(other.channel().number(), count);
  }
  const auto read = openElsewhere(directory.path())->fetch<QLSnippet>({}).value().front();
  EXPECT_EQ(read->title(), u"51");
  EXPECT_EQ(read->useCount(), 102);
}

// Counts a use of the only snippet whenever it has the number of uses that it is told.
void useOnceAt(const std::filesystem::path& directory, const Channel& parent) {
  std::unique_ptr<ObservedLibrary> library;
  while (const auto number = parent.number()) {
    if (!library) {
      library = std::make_unique<ObservedLibrary>(directory);
      if (!library->observer.startObserving()) return;
    }
    const auto snippet = library->view.fetch<QLSnippet>({}).value().front();
    if (!library->queue.pumpUntil([&] { return snippet->useCount() == *number; })) return;
    snippet->setUseCount(snippet->useCount() + 1);
    if (!library->view.save()) return;
    parent.send(static_cast<int>(snippet->useCount()));
  }
}

// The application on two displays: author and context have the same names in both.
TEST(TwoProcesses, OfTheSameNamesAddUpWhatBothCount) {
  const TemporaryDirectory directory;
  ChildProcess other([&](const Channel& parent) { useOnceAt(directory.path(), parent); });
  ObservedLibrary library(directory.path());
  const auto snippet = library.view.insert<QLSnippet>();
  snippet->setUseCount(3);
  ASSERT_TRUE(library.view.save());
  ASSERT_TRUE(library.observer.startObserving());
  other.channel().send(3);
  EXPECT_EQ(other.channel().number(), 4);
  EXPECT_TRUE(library.queue.pumpUntil([&] { return snippet->useCount() == 4; }));

  snippet->setUseCount(5);  // not saved before the other counts, too
  other.channel().send(4);
  EXPECT_EQ(other.channel().number(), 5);
  ASSERT_TRUE(library.view.save());
  EXPECT_TRUE(library.queue.pumpUntil([&] { return snippet->useCount() == 6; }));
  EXPECT_EQ(openElsewhere(directory.path())->fetch<QLSnippet>({}).value().front()->useCount(), 6);
}

}  // namespace
}  // namespace quorlo
