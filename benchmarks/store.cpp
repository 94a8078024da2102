// What the library's file costs: opening it with 10,000 and 100,000 snippets, saving one change and 10,000
// new snippets, and looking abbreviations up. Runs on the disk of the temporary directory. A save waits for
// the disk once; what the disk alone takes for that is measured beside it and taken off.

#include "base/log.h"
#include "fakes/temporary_directory.h"
#include "figures.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/sqlite/file/log_settling.h"
#include "store/sqlite/open_library.h"
#include "store/sqlite/sqlite_database.h"

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorlo {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kOpenings = 7;
constexpr int kSaves = 60;
constexpr int kBigSaves = 3;
constexpr int kLookups = 200'000;

double millisecondsSince(Clock::time_point begin) {
  return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

[[noreturn]] void giveUp(const Error& error) {
  std::fprintf(stderr, "%s\n", error.message.c_str());
  std::exit(1);
}

// Opened and loaded, or the end.
class Library : public OpenLibrary {
 public:
  explicit Library(const std::filesystem::path& directory) : OpenLibrary(directory) {
    if (!failure().empty()) giveUp({failure()});
  }

  void save() {
    if (const auto saved = context().save(); !saved) giveUp(saved.error());
    queue().settle();
  }
};

std::u16string abbreviation(int number) {
  const auto digits = std::to_string(number);
  return u"qq" + std::u16string(digits.begin(), digits.end());
}

// Every tenth is rich; the texts have 40 to 400 characters.
void addSnippets(ManagedObjectContext& context, int count) {
  std::vector<std::shared_ptr<QLCategory>> folders;
  for (int i = 0; i < 20; ++i) folders.push_back(context.insert<QLCategory>());
  std::mt19937 random(7);
  for (int i = 0; i < count; ++i) {
    const auto snippet = context.insert<QLSnippet>();
    snippet->setTitle(u"Snippet called " + abbreviation(i));
    snippet->setAbbreviation(abbreviation(i));
    std::u16string words;
    for (auto left = 40 + random() % 360; words.size() < left;) words += u"Grüße, words ";
    AttributedString text(words);
    if (i % 10 == 0) text.setAttributes({0, 5}, {.bold = true});
    snippet->setText(text);
    snippet->setCategory(folders[random() % folders.size()].get());
  }
}

void makeLibrary(const std::filesystem::path& directory, int count) {
  Library library(directory);
  addSnippets(library.context(), count);
  library.save();
}

void measureOpening(Figures& figures, const std::filesystem::path& directory, const std::string& size) {
  std::vector<double> samples;
  for (int i = 0; i < kOpenings; ++i) {
    const auto begin = Clock::now();
    Library library(directory);
    samples.push_back(millisecondsSince(begin));
  }
  figures.add("open_" + size + "_ms", percentile(samples, 0.5));
}

void measureLookups(Figures& figures, const std::filesystem::path& directory, int count,
                    const std::string& size) {
  Library library(directory);
  std::vector<std::u16string> wanted;
  std::mt19937 random(7);
  for (int i = 0; i < kLookups; ++i) wanted.push_back(abbreviation(static_cast<int>(random()) % (2 * count)));
  std::size_t found = 0;
  const auto begin = Clock::now();
  for (const auto& each : wanted) found += library.context().liveSnippet(each).value() != nullptr;
  const auto nanoseconds = millisecondsSince(begin) * 1e6 / kLookups;
  if (found == 0) giveUp({"No abbreviation was found."});
  figures.add("lookup_ns_" + size, nanoseconds);
}

void measureUuids(Figures& figures, const std::filesystem::path& directory) {
  Library library(directory);
  std::vector<std::string> wanted;
  const auto all = library.context().fetch(FetchRequest<QLSnippet>{}).value();
  std::mt19937 random(7);
  for (int i = 0; i < kLookups; ++i) wanted.push_back(all[random() % all.size()]->uuid());
  library.context().recordOfUuid<QLSnippet>(wanted.front());  // makes the index
  std::size_t found = 0;
  const auto begin = Clock::now();
  for (const auto& each : wanted) found += library.context().recordOfUuid<QLSnippet>(each) != nullptr;
  const auto nanoseconds = millisecondsSince(begin) * 1e6 / kLookups;
  if (found != wanted.size()) giveUp({"A uuid was not found."});
  figures.add("find_uuid_ns_100k", nanoseconds);
}

// One use of a snippet of 57 MB, and how much it writes.
void measureAUseOfALongText(Figures& figures) {
  TemporaryDirectory directory;
  Library library(directory.path());
  const auto snippet = library.context().insert<QLSnippet>();
  snippet->setTitle(u"Long");
  snippet->setPlainText(std::u16string(57'000'000, u'x'));
  snippet->setUseCount(1);
  library.save();
  if (!library.database().execute("PRAGMA wal_checkpoint(TRUNCATE)")) giveUp({"The log cannot be merged."});
  snippet->setUseCount(2);
  library.save();
  std::filesystem::path log = library.database().file();
  log += "-wal";
  figures.add("use_of_57mb_written_kb", static_cast<double>(std::filesystem::file_size(log)) / 1024);
}

// As much as the write-ahead log gets in a small save, then the wait.
double syncMilliseconds(int file) {
  const std::string pages(5UL * 4096, 'x');
  const auto begin = Clock::now();
  if (::write(file, pages.data(), pages.size()) < 0 || ::fdatasync(file) != 0)
    giveUp({"No file can be written."});
  return millisecondsSince(begin);
}

void measureSavingOne(Figures& figures, const std::filesystem::path& directory) {
  Library library(directory);
  const auto snippet = library.context().fetch(FetchRequest<QLSnippet>{.fetchLimit = 1}).value().front();
  const int file = ::open((directory / "synchronised").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
  std::vector<double> saves;
  std::vector<double> beyond;
  for (int i = 0; i < kSaves; ++i) {
    const auto sync = syncMilliseconds(file);
    snippet->setUseCount(snippet->useCount() + 1);
    const auto begin = Clock::now();
    library.save();
    saves.push_back(millisecondsSince(begin));
    beyond.push_back(saves.back() - sync);
  }
  ::close(file);
  figures.add("save_1_ms", percentile(saves, 0.5));
  figures.add("save_1_beyond_sync_ms", percentile(beyond, 0.5));
}

void measureSavingMany(Figures& figures) {
  std::vector<double> samples;
  for (int i = 0; i < kBigSaves; ++i) {
    TemporaryDirectory directory;
    Library library(directory.path());
    addSnippets(library.context(), 10'000);
    const auto begin = Clock::now();
    library.save();
    samples.push_back(millisecondsSince(begin));
  }
  figures.add("save_10k_ms", percentile(samples, 0.5));
}

// What a start after an unclean end does on a thread.
void measureCheck(Figures& figures, const std::filesystem::path& directory) {
  std::vector<double> samples;
  for (int i = 0; i < kOpenings; ++i) {
    SqliteDatabase database(directory / kStoreFileName);
    if (const auto opened = database.open(SqliteDatabase::Access::readOnly); !opened) giveUp(opened.error());
    const auto begin = Clock::now();
    const auto sound = isSound(database);
    samples.push_back(millisecondsSince(begin));
    if (!sound || !sound.value()) giveUp({"The library is not sound."});
  }
  figures.add("quick_check_100k_ms", percentile(samples, 0.5));
}

void run(Figures& figures) {
  TemporaryDirectory directory;
  makeLibrary(directory / "1k", 1'000);
  makeLibrary(directory / "10k", 10'000);
  makeLibrary(directory / "100k", 100'000);
  measureOpening(figures, directory / "10k", "10k");
  measureOpening(figures, directory / "100k", "100k");
  measureCheck(figures, directory / "100k");
  measureLookups(figures, directory / "1k", 1'000, "1k");
  measureLookups(figures, directory / "100k", 100'000, "100k");
  measureUuids(figures, directory / "100k");
  measureAUseOfALongText(figures);
  measureSavingOne(figures, directory / "10k");
  measureSavingMany(figures);
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  const auto silence = quorlo::redirectLog([](quorlo::LogLevel, std::string_view) {});
  quorlo::Figures figures(argc, argv);
  quorlo::run(figures);
}
