#include "cli/importing/import_output.h"

#include "base/counted.h"
#include "cli/command_session.h"
#include "cli/terminal_text.h"
#include "import/import_report.h"
#include "text/utf.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

namespace quorlo {
namespace {

constexpr std::size_t kMostDetails = 50;
constexpr std::size_t kColumns = 3;
constexpr std::array<std::size_t, kColumns> kWidest{24, 16, 40};

using Row = std::array<std::string, kColumns>;

const Row kHeadings{"TITLE", "ABBREVIATION", "TEXT"};

Row rowOf(const ImportedExample& example) {
  Row row{toUtf8(example.title), toUtf8(example.abbreviation), toUtf8(example.text)};
  for (auto& field : row) field = printable(field, LineBreaks::shown);
  return row;
}

// In a terminal columns, for other programs a line each with tabs between.
void printExamples(CommandOutput& out, const std::vector<ImportedExample>& examples) {
  std::vector<Row> rows;
  for (const auto& each : examples) rows.push_back(rowOf(each));
  if (!out.isTerminal()) {
    for (const auto& row : rows) out.write(row[0] + "\t" + row[1] + "\t" + row[2] + "\n");
    return;
  }
  if (rows.empty()) return;
  rows.insert(rows.begin(), kHeadings);
  std::array<std::size_t, kColumns> widths{};
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < kColumns; ++i) {
      widths[i] = std::min(std::max(widths[i], displayWidth(row[i])), kWidest[i]);
    }
  }
  for (const auto& row : rows) out.write(alignedLine(row, widths));
}

// A file may have thousands of abbreviations that are in use.
void noteDetails(CommandSession& session, const ImportReport& report) {
  const auto lines = details(report);
  const auto shown = std::min(lines.size(), kMostDetails);
  for (std::size_t i = 0; i < shown; ++i) session.note(toUtf8(lines[i]));
  if (shown == lines.size()) return;
  session.note("And " + counted(lines.size() - shown, "more notice", "more notices") +
               "; --json lists them all.");
}

}  // namespace

void printImport(CommandSession& session, const ImportReport& report) {
  if (session.json()) return session.out().write(json(report));
  noteDetails(session, report);
  session.out().write(toUtf8(summary(report)) + "\n");
  printExamples(session.out(), report.examples);
}

}  // namespace quorlo
