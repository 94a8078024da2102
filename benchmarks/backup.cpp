// How long a backup of a library of 100,000 snippets takes, checked and on the disk, and how long the main
// thread stands still at most meanwhile, while it edits and saves. Another number of snippets may be given as
// the first argument.

#include "fakes/fake_environment.h"
#include "fakes/one_thread_queue.h"
#include "fakes/temporary_directory.h"
#include "figures.h"
#include "store/backup/library_backups.h"
#include "store/persistence_controller.h"
#include "store/records/ql_snippet.h"
#include "support/metered_queue.h"
#include "text/utf.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace quorlo {
namespace {

constexpr int kBackups = 5;
constexpr Seconds kBetweenEdits{0.005};
constexpr Seconds kBetweenSaves{0.05};

using Clock = std::chrono::steady_clock;

void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "%s\n", what);
  std::exit(1);
}

void fill(ManagedObjectContext& library, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const auto number = toUtf16(std::to_string(i));
    const auto snippet = library.insert<QLSnippet>();
    snippet->setTitle(u"Snippet " + number);
    snippet->setAbbreviation(u"i" + number);
    snippet->setText(AttributedString(u"The text of snippet " + number +
                                      u", a line of the usual length, with some more words"));
  }
  require(library.save().ok(), "The library cannot be filled.");
}

// As a program in use does, until `mayGoOn` is false.
void keepWorking(MeteredQueue& queue, const std::function<void()>& work, Seconds pause, const bool& mayGoOn) {
  queue.runAfter(pause, [&queue, work, pause, &mayGoOn] {
    if (!mayGoOn) return;
    work();
    keepWorking(queue, work, pause, mayGoOn);
  });
}

void run(Figures& figures, std::size_t count) {
  const TemporaryDirectory directory;
  FakeEnvironment environment;
  environment.data = directory.path();
  OneThreadQueue background;
  MeteredQueue queue;
  auto opened = PersistenceController::open(queue, environment, {});
  require(opened.ok(), "The library cannot be opened.");
  auto& library = opened.value()->managedObjectContext();
  fill(library, count);
  const auto snippets = library.fetch<QLSnippet>({}).value();
  LibraryBackups backups(
      {queue, background, directory.path(), [] { return Date(std::chrono::system_clock::now()); }});

  bool isWorking = true;
  std::size_t edits = 0;
  const auto edit = [&] {
    ++edits;
    snippets[edits % snippets.size()]->setUseCount(static_cast<std::int64_t>(edits));
  };
  keepWorking(queue, edit, kBetweenEdits, isWorking);
  keepWorking(
      queue, [&] { require(library.save().ok(), "A change cannot be saved."); }, kBetweenSaves, isWorking);
  std::vector<double> durations;
  for (int i = 0; i < kBackups; ++i) {
    queue.pumpUntil([begin = Clock::now()] { return Clock::now() - begin > 2 * kBetweenSaves; });
    if (i == 0) queue.forget();
    bool isDone = false;
    const auto begin = Clock::now();
    backups.add([&](const auto& added) {
      require(added.ok() && added.value().isNew, "There is no backup.");
      isDone = true;
    });
    require(queue.pumpUntil([&] { return isDone; }, std::chrono::minutes(1)), "The backup does not end.");
    durations.push_back(std::chrono::duration<double>(Clock::now() - begin).count());
  }
  isWorking = false;
  figures.add("backup_100k_ms", 1000 * percentile(durations, 0.5));
  figures.add("backup_longest_turn_ms", 1000 * queue.longestTurn());
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  quorlo::Figures figures(argc, argv);
  const auto given = argc == 2 ? std::strtoull(argv[1], nullptr, 10) : 0;
  quorlo::run(figures, given == 0 ? 100'000 : given);
}
