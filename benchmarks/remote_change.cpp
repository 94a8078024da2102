// How long it takes until what one process saves is in the main context of another, of 10,000 snippets: from
// before the save to after the refresh, 95 of 100 times.

#include "fakes/temporary_directory.h"
#include "figures.h"
#include "store/history/observed_library.h"
#include "store/records/ql_snippet.h"
#include "store/sqlite/child_process.h"
#include "text/utf.h"

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

void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "%s\n", what);
  std::exit(1);
}

// Changes the title of a snippet whenever it is told to.
void writeInto(const std::filesystem::path& directory, const Channel& parent) {
  std::unique_ptr<ManagedObjectContext> context;
  while (const auto number = parent.number()) {
    if (!context) context = openElsewhere(directory);
    const auto snippet = context->fetch<QLSnippet>({.fetchLimit = 1}).value().front();
    snippet->setTitle(toUtf16("saved " + std::to_string(*number)));
    require(context->save().ok(), "The store cannot be written.");
  }
}

void run(Figures& figures) {
  const TemporaryDirectory directory;
  ChildProcess other([&directory](const Channel& parent) { writeInto(directory.path(), parent); });

  ObservedLibrary library(directory.path());
  for (int i = 0; i < kSnippets; ++i) library.view.insert<QLSnippet>()->setTitle(u"Title");
  require(library.view.save().ok(), "The store cannot be filled.");
  require(library.observer.startObserving().ok(), "The store cannot be watched.");

  const auto snippet = library.view.fetch<QLSnippet>({.fetchLimit = 1}).value().front();
  std::vector<double> samples;
  for (int number = 0; number <= kSaves; ++number) {
    const auto title = toUtf16("saved " + std::to_string(number));
    const auto begin = std::chrono::steady_clock::now();
    other.channel().send(number);
    require(library.queue.pumpUntil([&] { return snippet->title() == title; }), "A change was missed.");
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
