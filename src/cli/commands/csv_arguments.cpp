#include "cli/commands/csv_arguments.h"

#include "cli/definition/command_definition.h"
#include "import/csv/csv_file.h"
#include "import/csv/cswiftv.h"
#include "import/csv/separators.h"
#include "text/case_folding.h"
#include "text/utf.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace quorlo {
namespace {

constexpr std::array<std::pair<std::string_view, char16_t>, 4> kSeparatorNames{
    {{"comma", u','}, {"semicolon", u';'}, {"tab", u'\t'}, {"bar", u'|'}}};

std::optional<char16_t> separatorOf(const std::string& given) {
  for (const auto& [name, separator] : kSeparatorNames) {
    if (given == name) return separator;
  }
  const auto text = toUtf16(given == "\\t" ? "\t" : given);
  const bool mayBe = text.size() == 1 && std::u16string_view(u"\"\n\r").find(text[0]) == std::u16string::npos;
  return mayBe ? std::optional(text[0]) : std::nullopt;
}

std::string faultOfSeparator(const std::string& given) {
  return separatorOf(given) ? "" : "\"" + given + "\" is neither comma, semicolon, tab, bar nor a character";
}

std::optional<std::size_t> columnNumber(const std::string& given) {
  std::size_t number = 0;
  const auto* const end = given.data() + given.size();
  const auto [stop, failure] = std::from_chars(given.data(), end, number);
  return failure == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

std::string faultOfColumn(const std::string& given) {
  if (given.empty()) return "an empty name is no column's";
  return columnNumber(given) == std::size_t{0} ? "columns are counted from 1" : "";
}

// The names of a table's columns, read when they are first asked for.
class Header {
 public:
  Header(const CsvArguments& arguments, const std::filesystem::path& table, WorkProgress& progress)
      : arguments_(arguments), table_(table), progress_(progress) {}

  struct Column {
    std::size_t index;
    bool isNamed;
  };

  // A name comes before a number: "2024" may be one.
  Result<Column> column(const std::string& given) {
    const auto number = columnNumber(given);
    if (arguments_.hasNoHeader) {
      if (number) return Column{*number - 1, false};
      return Error{"Without a header the columns have no names: give the number of \"" + given + "\"."};
    }
    if (names_.empty()) {
      if (auto status = read(); !status) return status.error();
    }
    const auto name = toUtf16(given);
    auto found = std::ranges::find(names_, name);
    if (found == names_.end()) {
      if (number) return Column{*number - 1, false};
      found =
          std::ranges::find_if(names_, [&](const auto& each) { return foldCase(each) == foldCase(name); });
    }
    if (found == names_.end()) return missing(given);
    return Column{static_cast<std::size_t>(found - names_.begin()), true};
  }

 private:
  Status read() {
    const auto decoded = readCsvText(table_, progress_);
    if (!decoded) return decoded.error();
    const auto& text = decoded.value().text;
    const auto separator =
        arguments_.separator ? separatorOf(*arguments_.separator) : likeliestSeparator(text);
    CsvExtent header{.rows = 1};
    header.start = startOfTable(text, separator.value_or(u','));
    const auto parsed = CSwiftV::parse(text, separator.value_or(u','), CSwiftV::Header::firstRow, header);
    if (!parsed) return Error{"\"" + table_.string() + "\": " + parsed.error().message};
    names_ = parsed.value().headers();
    return {};
  }

  Error missing(const std::string& given) const {
    std::string known;
    for (const auto& each : names_) known += (known.empty() ? "" : ", ") + toUtf8(each);
    return {"\"" + table_.string() + "\" has no column \"" + given + "\". Its columns are: " + known};
  }

  const CsvArguments& arguments_;
  const std::filesystem::path& table_;
  WorkProgress& progress_;
  std::vector<std::u16string> names_;
};

}  // namespace

void addCsvArguments(CommandDefinition& command, CsvArguments& arguments) {
  constexpr auto kSection = "Of tables";
  command
      .addText("--separator", arguments.separator, "What stands between the fields; the likeliest without it",
               "comma|semicolon|tab|bar|CHARACTER")
      .check(faultOfSeparator)
      .in(kSection);
  const auto& noHeader =
      command.addFlag("--no-header", arguments.hasNoHeader, "The first row is a snippet, too").in(kSection);
  command.addFlag("--header", arguments.hasHeader, "The first row has the names of the columns")
      .in(kSection)
      .excludes(noHeader);
  const auto addColumn = [&](const char* name, std::optional<std::string>& column, const char* help) {
    command.addText(name, column, help, "COLUMN").check(faultOfColumn).in(kSection);
  };
  addColumn("--title", arguments.title, "The column of the titles: its number from 1, or its name");
  addColumn("--abbreviation", arguments.abbreviation, "The column of the abbreviations");
  addColumn("--text", arguments.text, "The column of the texts");
}

Result<CsvMapping> csvMapping(const CsvArguments& arguments, const std::filesystem::path& table,
                              WorkProgress& progress) {
  CsvMapping mapping;
  if (arguments.hasHeader || arguments.hasNoHeader) mapping.hasHeader = arguments.hasHeader;
  if (arguments.separator) mapping.separator = separatorOf(*arguments.separator);
  if (!arguments.title && !arguments.abbreviation && !arguments.text) return mapping;

  Header header(arguments, table, progress);
  auto& columns = mapping.columns.emplace();
  for (const auto& [given, column] : {std::pair(&arguments.title, &columns.title),
                                      std::pair(&arguments.abbreviation, &columns.abbreviation),
                                      std::pair(&arguments.text, &columns.text)}) {
    if (!*given) continue;
    const auto found = header.column(**given);
    if (!found) return found.error();
    if (found.value().isNamed) mapping.hasHeader = true;
    *column = found.value().index;
  }
  return mapping;
}

}  // namespace quorlo
