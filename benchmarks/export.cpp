// What exporting costs: 100,000 snippets, from the library's file on disk to the written and synchronised
// file, as a document and as a table; and how much memory a library of 256 pictures, 1 MiB each, takes for
// it.

#include "base/log.h"
#include "fakes/temporary_directory.h"
#include "figures.h"
#include "import/export/export_library.h"
#include "import/work_progress.h"
#include "store/context/background_context.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/sqlite/open_library.h"
#include "support/process_status.h"

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace quorlo {
namespace {

using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

constexpr int kExports = 5;
constexpr std::size_t kPictures = 256;
constexpr std::size_t kPictureBytes = std::size_t{1} << 20;

void require(const Status& status) {
  if (status) return;
  std::fprintf(stderr, "%s\n", status.error().message.c_str());
  std::exit(1);
}

void makeLibrary(const fs::path& directory, const std::function<void(ManagedObjectContext&)>& fill) {
  OpenLibrary library(directory);
  if (!library.failure().empty()) require(Error{library.failure()});
  fill(library.context());
  require(library.context().save());
}

// Texts of 40 to 400 characters, every tenth rich, in 20 folders.
void addSnippets(ManagedObjectContext& context) {
  std::vector<std::shared_ptr<QLCategory>> folders;
  for (int i = 0; i < 20; ++i) folders.push_back(context.insert<QLCategory>());
  std::mt19937 random(7);
  for (int i = 0; i < 100'000; ++i) {
    const auto snippet = context.insert<QLSnippet>();
    const auto digits = std::to_string(i);
    const std::u16string number(digits.begin(), digits.end());
    snippet->setTitle(u"Snippet called " + number);
    snippet->setAbbreviation(u"qq" + number);
    std::u16string words;
    for (auto left = 40 + random() % 360; words.size() < left;) words += u"Grüße, \"words\"\n";
    AttributedString text(words);
    if (i % 10 == 0) text.setAttributes({0, 5}, {.bold = true});
    snippet->setText(text);
    snippet->setCategory(folders[random() % folders.size()].get());
  }
}

void addPictures(ManagedObjectContext& context) {
  std::mt19937 random(7);
  for (std::size_t i = 0; i < kPictures; ++i) {
    std::vector<std::uint8_t> bytes(kPictureBytes);
    for (auto& each : bytes) each = static_cast<std::uint8_t>(random());
    const ImageAttachment image{std::make_shared<const std::vector<std::uint8_t>>(std::move(bytes)),
                                "image/png"};
    context.insert<QLSnippet>()->setText(AttributedString(u"\uFFFC", {.image = image}));
  }
}

// As the window does it, in one thread.
void exportLibrary(const fs::path& directory, ExportFormat format) {
  const auto context =
      openBackgroundContext(directory / kStoreFileName,
                            {.name = "export", .transactionAuthor = "export", .now = [] { return Date(); }});
  if (!context) require(context.error());
  WorkProgress progress;
  const auto report = exportToFile(*context.value(), WholeLibrary{}, format, directory / "export", progress);
  if (!report) require(report.error());
}

void measureTime(Figures& figures, const std::string& name, const fs::path& directory, ExportFormat format) {
  std::vector<double> samples;
  for (int i = 0; i < kExports; ++i) {
    const auto begin = Clock::now();
    exportLibrary(directory, format);
    samples.push_back(std::chrono::duration<double>(Clock::now() - begin).count());
  }
  figures.add(name, percentile(samples, 0.5));
}

// Of a process that does nothing else.
double peakMegabytes(const fs::path& directory) {
  const auto result = directory / "peak";
  const auto child = ::fork();
  if (child == 0) {
    exportLibrary(directory, ExportFormat::json);
    std::ofstream(result) << statusValue("/proc/self/status", "VmHWM");
    std::_Exit(0);
  }
  int status = 0;
  if (child < 0 || ::waitpid(child, &status, 0) != child || status != 0)
    require(Error{"The export has failed."});
  double kilobytes = 0;
  std::ifstream(result) >> kilobytes;
  return kilobytes / 1024;
}

// The library is made in a process of its own, so that its memory does not count.
void makePictures(const fs::path& directory) {
  const auto child = ::fork();
  if (child == 0) {
    makeLibrary(directory, addPictures);
    std::_Exit(0);
  }
  int status = 0;
  if (child < 0 || ::waitpid(child, &status, 0) != child || status != 0)
    require(Error{"No library can be made."});
}

void run(Figures& figures) {
  TemporaryDirectory directory;
  makePictures(directory / "pictures");
  figures.add("export_256mb_pictures_rss_mb", peakMegabytes(directory / "pictures"));
  makeLibrary(directory / "100k", addSnippets);
  measureTime(figures, "export_100k_s", directory / "100k", ExportFormat::json);
  measureTime(figures, "export_csv_100k_s", directory / "100k", ExportFormat::csv);
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  const auto silence = quorlo::redirectLog([](quorlo::LogLevel, std::string_view) {});
  quorlo::Figures figures(argc, argv);
  quorlo::run(figures);
}
