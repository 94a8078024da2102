#pragma once

#include "base/result.h"
#include "import/csv/csv_mapping.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quorlo {

class CommandDefinition;
class WorkProgress;

// How a table is to be read, as the user gives it; what is left open is guessed from the table.
struct CsvArguments {
  std::optional<std::string> separator;
  bool hasHeader = false;
  bool hasNoHeader = false;
  std::optional<std::string> title;  // a column: its number from 1, or its name in the header
  std::optional<std::string> abbreviation;
  std::optional<std::string> text;
};

void addCsvArguments(CommandDefinition& command, CsvArguments& arguments);

// Once one column is given, those that are not given have no value. Names are looked up in the table, which
// is read for that; an error says which there are.
Result<CsvMapping> csvMapping(const CsvArguments& arguments, const std::filesystem::path& table,
                              WorkProgress& progress);

}  // namespace quorlo
