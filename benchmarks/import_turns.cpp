// How long the main thread stands still at most while a file of a program's own form is imported in the
// background and taken in, and how long all of it takes: 100,000 snippets into a library of 10,000. Another
// number of snippets may be given as the first argument.

#include "fakes/fake_environment.h"
#include "fakes/fake_user_defaults.h"
#include "fakes/one_thread_queue.h"
#include "fakes/temporary_directory.h"
#include "figures.h"
#include "import/import_report.h"
#include "import/library_import.h"
#include "store/history/persistent_history_observer.h"
#include "store/persistence_controller.h"
#include "store/records/ql_snippet.h"
#include "store/sqlite/file/store_opening.h"
#include "support/metered_queue.h"
#include "text/utf.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

namespace quorlo {
namespace {

constexpr std::size_t kPresent = 10'000;
constexpr std::chrono::minutes kPatienceWithAll(5);

using Clock = std::chrono::steady_clock;

double seconds(Clock::duration duration) {
  return std::chrono::duration<double>(duration).count();
}

void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "%s\n", what);
  std::exit(1);
}

std::shared_ptr<const ImportData> records(std::size_t count) {
  auto data = std::make_shared<ImportData>();
  data->folders = {u"Imported"};
  for (std::size_t i = 0; i < count; ++i) {
    const auto number = toUtf16(std::to_string(i));
    data->snippets.push_back({.title = u"Snippet " + number,
                              .abbreviation = u"i" + number,
                              .text = AttributedString(u"The text of snippet " + number +
                                                       u", a line of the usual length, with some more words"),
                              .folder = 0});
  }
  return data;
}

void run(Figures& figures, std::size_t count) {
  const TemporaryDirectory directory;
  FakeEnvironment environment;
  environment.data = directory.path();
  FakeUserDefaults defaults;
  OneThreadQueue background;
  MeteredQueue queue;
  auto library = PersistenceController::open(queue, environment, {});
  require(library.ok(), "The library cannot be opened.");
  auto& context = library.value()->managedObjectContext();
  for (std::size_t i = 0; i < kPresent; ++i) context.insert<QLSnippet>()->setTitle(u"Title");
  require(context.save().ok(), "The store cannot be filled.");
  const auto now = [] { return Date(std::chrono::system_clock::now()); };
  const auto file = directory / kStoreFileName;
  PersistentHistoryObserver observer(AppTarget::app, {queue, defaults, context, file, now});
  require(observer.startObserving().ok(), "The store cannot be watched.");
  LibraryImport libraryImport({queue, background, *library.value(), file, now});

  const auto data = records(count);
  std::shared_ptr<const ImportReport> report;
  const auto begin = Clock::now();
  queue.forget();
  libraryImport.importData(data, {}, [&report](const auto& result) {
    require(result.ok(), "The import failed.");
    report = std::make_shared<const ImportReport>(result.value());
  });
  require(queue.pumpUntil([&] { return report != nullptr; }, kPatienceWithAll), "The import does not end.");
  const auto holds = [&](std::size_t number) {
    return queue.pumpUntil(
        [&] { return context.count(Entity::snippet, QLSnippet::kDeletionDate.isNil()).value() == number; },
        kPatienceWithAll);
  };
  require(holds(kPresent + count), "The imported snippets do not come.");
  figures.add("import_taken_in_s", seconds(Clock::now() - begin));
  figures.add("import_longest_turn_ms", 1000 * queue.longestTurn());

  queue.forget();
  bool isUndone = false;
  libraryImport.undo(report, [&isUndone](const auto& undone) { isUndone = undone.ok(); });
  require(queue.pumpUntil([&] { return isUndone; }, kPatienceWithAll), "The import cannot be undone.");
  require(holds(kPresent), "The imported snippets do not go.");
  figures.add("import_undo_longest_turn_ms", 1000 * queue.longestTurn());
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  quorlo::Figures figures(argc, argv);
  const auto given = argc == 2 ? std::strtoull(argv[1], nullptr, 10) : 0;
  quorlo::run(figures, given == 0 ? 100'000 : given);
}
