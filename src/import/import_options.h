#pragma once

#include <string>
#include <variant>

namespace quorlo {

// Into the folders that the file itself names, and into All Snippets what stands in none of them.
struct ImportAsFiled {
  bool operator==(const ImportAsFiled&) const = default;
};
// Everything into this folder of the user's own.
struct ImportIntoFolder {
  std::string uuid;
  bool operator==(const ImportIntoFolder&) const = default;
};
// Everything into the user's folder of this title, which is made when there is none.
struct ImportIntoTitled {
  std::u16string title;
  bool operator==(const ImportIntoTitled&) const = default;
};
using ImportDestination = std::variant<ImportAsFiled, ImportIntoFolder, ImportIntoTitled>;

struct ImportOptions {
  ImportDestination destination = {};
  bool skipDuplicates = true;  // those of the same title and text, in the library or earlier in the file
  bool isDryRun = false;       // the report says what an import would do; nothing is changed
};

}  // namespace quorlo
