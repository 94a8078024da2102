// How long it takes until what one process saves is in the main context of another, of 10,000 snippets: from
// before the save to after the refresh, 95 of 100 times.

#include "fakes/fake_user_defaults.h"
#include "fakes/temporary_directory.h"
#include "figures.h"
#include "store/background_context.h"
#include "store/history/persistent_history_observer.h"
#include "store/history/view_context.h"
#include "store/ql_snippet.h"
#include "store/sqlite/child_process.h"
#include "store/sqlite/store_opening.h"
#include "text/utf.h"
#include "x11/pumped_queue.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace quorlo {
namespace {

constexpr int kSnippets = 10'000;
constexpr int kSaves = 100;

Date now() {
  return std::chrono::system_clock::now();
}

void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "%s\n", what);
  std::exit(1);
}

std::unique_ptr<ManagedObjectContext> contextOf(const std::filesystem::path& file) {
  auto context =
      openBackgroundContext(file, {.name = "other_context", .transactionAuthor = "other", .now = now});
  require(context.ok(), "The store cannot be opened.");
  return std::move(context).value();
}

// Changes the title of a snippet whenever it is told to.
void writeInto(const std::filesystem::path& file, const Channel& parent) {
  std::unique_ptr<ManagedObjectContext> context;
  while (const auto number = parent.number()) {
    if (!context) context = contextOf(file);
    const auto snippets = context->fetch<QLSnippet>({.fetchLimit = 1}).value();
    snippets.front()->setTitle(toUtf16("saved " + std::to_string(*number)));
    require(context->save().ok(), "The store cannot be written.");
  }
}

void run(Figures& figures) {
  const TemporaryDirectory directory;
  const auto file = directory / std::string(kStoreFileName);
  ChildProcess other([&file](const Channel& parent) { writeInto(file, parent); });

  require(openStore(file.parent_path(), {.now = now()}).ok(), "The store cannot be made.");
  {
    const auto filling = contextOf(file);
    for (int i = 0; i < kSnippets; ++i) filling->insert<QLSnippet>()->setTitle(u"Title");
    require(filling->save().ok(), "The store cannot be filled.");
  }
  PumpedQueue queue;
  FakeUserDefaults defaults;
  ManagedObjectContext view(queue, viewConfiguration(file));
  require(view.load().ok(), "The store cannot be read.");
  PersistentHistoryObserver observer(
      AppTarget::app,
      {.mainQueue = queue, .defaults = defaults, .viewContext = view, .storeFile = file, .now = now});
  require(observer.startObserving().ok(), "The store cannot be watched.");

  const auto snippet = view.fetch<QLSnippet>({.fetchLimit = 1}).value().front();
  std::vector<double> samples;
  for (int number = 0; number <= kSaves; ++number) {
    const auto title = toUtf16("saved " + std::to_string(number));
    const auto begin = std::chrono::steady_clock::now();
    other.channel().send(number);
    require(queue.pumpUntil([&] { return snippet->title() == title; }), "A change was missed.");
    const std::chrono::duration<double, std::milli> duration = std::chrono::steady_clock::now() - begin;
    if (number > 0) samples.push_back(duration.count());  // the first opens the other's connection
  }
  figures.add("remote_change_ms", percentile(samples, 0.95));
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  quorlo::Figures figures(argc, argv);
  quorlo::run(figures);
}
