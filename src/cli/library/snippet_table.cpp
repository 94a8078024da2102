#include "cli/library/snippet_table.h"

#include "cli/command_session.h"
#include "cli/library/snippet_json.h"
#include "cli/terminal_text.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "text/utf.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

namespace quorlo {
namespace {

constexpr std::size_t kColumns = 4;
constexpr std::size_t kTitle = 1;
constexpr std::size_t kUuid = 3;
constexpr std::size_t kShownUuid = 8;
constexpr std::size_t kNarrowestTitle = 12;

using Row = std::array<std::string, kColumns>;
using Widths = std::array<std::size_t, kColumns>;

constexpr Widths kWidest{24, 1000, 20, 36};
const Row kHeadings{"ABBREVIATION", "TITLE", "FOLDER", "UUID"};

Row rowOf(const QLSnippet& snippet) {
  const auto folder = snippet.category();
  Row row{toUtf8(snippet.abbreviation()), toUtf8(snippet.displayTitle()),
          folder ? toUtf8(folder->title()) : std::string(), snippet.uuid()};
  for (auto& field : row) field = printable(field, LineBreaks::shown);
  return row;
}

// The title takes what the others leave.
Widths widthsOf(const std::vector<Row>& rows, std::size_t columns) {
  Widths widths{};
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < kColumns; ++i) {
      widths[i] = std::min(std::max(widths[i], displayWidth(row[i])), kWidest[i]);
    }
  }
  const auto others = widths[0] + widths[2] + widths[kUuid] + (kColumns - 1) * kGap.size();
  const auto left = std::max(columns > others ? columns - others : 0, kNarrowestTitle);
  widths[kTitle] = std::min(widths[kTitle], left);
  return widths;
}

void printColumns(CommandOutput& out, std::vector<Row> rows) {
  for (auto& row : rows) row[kUuid].resize(std::min(row[kUuid].size(), kShownUuid));
  rows.insert(rows.begin(), kHeadings);
  const auto widths = widthsOf(rows, out.columns());
  for (const auto& row : rows) out.write(alignedLine(row, widths));
}

void printLines(CommandOutput& out, const std::vector<Row>& rows) {
  for (const auto& row : rows) out.write(row[0] + "\t" + row[1] + "\t" + row[2] + "\t" + row[3] + "\n");
}

}  // namespace

void printSnippets(CommandSession& session, const std::vector<std::shared_ptr<QLSnippet>>& snippets) {
  if (session.json()) return session.printJson(snippetsJson(snippets));
  std::vector<Row> rows;
  for (const auto& each : snippets) rows.push_back(rowOf(*each));
  if (!session.out().isTerminal()) return printLines(session.out(), rows);
  if (!rows.empty()) printColumns(session.out(), std::move(rows));
}

}  // namespace quorlo
