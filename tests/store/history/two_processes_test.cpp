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

}  // namespace
}  // namespace quorlo
