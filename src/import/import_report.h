#pragma once

#include "base/date.h"
#include "base/result.h"
#include "import/import_data.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace quorlo {

// What an import did, for the user and for taking it back.
struct ImportReport {
  std::size_t addedSnippets = 0;
  std::size_t addedFolders = 0;
  std::size_t duplicates = 0;            // skipped, as asked
  std::size_t presentSnippets = 0;       // of a library document: in the library already, left as they were
  std::size_t emptyRecords = 0;          // skipped: without title, abbreviation and text
  std::size_t refusedAbbreviations = 0;  // of snippets that were kept without them
  std::vector<ImportNotice> notices;     // one for each of these, and what the readers noticed
  std::vector<Error> refusedFiles;       // of several: those that nothing was taken from

  // What the import has added to the library.
  std::vector<std::string> snippetUuids;
  std::vector<std::string> folderUuids;
  std::string destination;  // uuid of the folder that holds all that came; empty when there is no such one
  Date date;                // of the import, and the modification date of every snippet it has added

  bool isDryRun = false;
};

// In words for the user. The summary is one sentence or two ("Added 12 snippets in 2 folders. …").
std::u16string summary(const ImportReport& report);
// The summary, then every notice and refused file on a line of its own.
std::u16string text(const ImportReport& report);
// An object; docs/formats.md has its keys. English.
std::string json(const ImportReport& report);

// text() in UTF-8, whole or not at all. An existing file is replaced.
Status saveReport(const ImportReport& report, const std::filesystem::path& file);

}  // namespace quorlo
