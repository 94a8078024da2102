// What the import of tables costs: taking bytes apart into rows, and 100,000 and 200,000 rows from the file
// to the saved library. Runs on the disk of the temporary directory.

#include "base/log.h"
#include "fakes/temporary_directory.h"
#include "figures.h"
#include "import/csv/csv_mapping.h"
#include "import/csv/cswiftv.h"
#include "import/csv/text_decoding.h"
#include "import/file_import.h"
#include "import/work_progress.h"
#include "store/sqlite/open_library.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace quorlo {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kParsings = 5;
constexpr int kImports = 3;
constexpr int kParsedRows = 600'000;

double secondsSince(Clock::time_point begin) {
  return std::chrono::duration<double>(Clock::now() - begin).count();
}

[[noreturn]] void giveUp(const std::string& message) {
  std::fprintf(stderr, "%s\n", message.c_str());
  std::exit(1);
}

// About 170 bytes a row; every third text is quoted and has two lines.
std::string table(int rows) {
  std::string text = "title,abbreviation,text\r\n";
  constexpr const char* kWords = "Grüße, and some more words of a letter that is sent again and again";
  for (int i = 0; i < rows; ++i) {
    const char* const quote = "\"";
    fmt::format_to(std::back_inserter(text), "The snippet called {0},qq{0},{1}{2}{3}{2}{1}\r\n", i, quote,
                   kWords, i % 3 == 0 ? "\r\n" : " ");
  }
  return text;
}

void measureParsing(Figures& figures) {
  const auto bytes = table(kParsedRows);
  std::vector<double> samples;
  for (int i = 0; i < kParsings; ++i) {
    const auto begin = Clock::now();
    WorkProgress progress;
    const auto decoded = decodeText(bytes, progress);
    if (!decoded) giveUp(decoded.error().message);
    const auto parsed = CSwiftV::parse(decoded.value().text, u',', CSwiftV::Header::firstRow);
    samples.push_back(static_cast<double>(bytes.size()) / 1e6 / secondsSince(begin));
    if (!parsed || parsed.value().rows().size() != kParsedRows + 1) giveUp("The table was not read.");
  }
  figures.add("csv_parse_mb_per_s", percentile(samples, 0.5));
}

double importSeconds(int rows) {
  std::vector<double> samples;
  for (int i = 0; i < kImports; ++i) {
    TemporaryDirectory directory;
    const auto file = directory / "table.csv";
    std::ofstream(file) << table(rows);
    OpenLibrary library(directory.path());
    if (!library.failure().empty()) giveUp(library.failure());
    WorkProgress progress;
    const auto begin = Clock::now();
    const auto report = importFile(file, CsvMapping(), {}, library.context(), progress);
    samples.push_back(secondsSince(begin));
    if (!report) giveUp(report.error().message);
    if (report.value().addedSnippets != static_cast<std::size_t>(rows)) giveUp("Snippets are missing.");
    library.queue().settle();
  }
  return percentile(samples, 0.5);
}

void run(Figures& figures) {
  measureParsing(figures);
  const auto of100k = importSeconds(100'000);
  figures.add("csv_import_100k_rows_s", of100k);
  figures.add("csv_growth", importSeconds(200'000) / of100k);
}

}  // namespace
}  // namespace quorlo

int main(int argc, char** argv) {
  const auto silence = quorlo::redirectLog([](quorlo::LogLevel, std::string_view) {});
  quorlo::Figures figures(argc, argv);
  quorlo::run(figures);
}
