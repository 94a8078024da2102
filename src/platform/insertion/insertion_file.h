#pragma once

#include "base/result.h"
#include "platform/insertion/insertion_table.h"

#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// The user's entries of the table as a text file (docs/formats.md). Pure functions of its text.

struct InsertionFile {
  std::vector<InsertionEntry> entries;
  std::vector<Error> problems;  // of lines that do not count; each names its line
};

InsertionFile readInsertionFile(std::string_view text);
// The older file that lists terminals alone, one name a line.
std::vector<InsertionEntry> readTerminalsFile(std::string_view text);

// Change one application's line and leave all others, comments included, as they are.
std::string withEntry(std::string_view text, const InsertionEntry& entry);
std::string withoutEntry(std::string_view text, std::string_view application);

}  // namespace quorlo
