#pragma once

#include "base/result.h"
#include "import/import_data.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace quorlo {

// The snippets that went into one folder, by uuid.
struct ImportedInto {
  std::string folder;  // empty for All Snippets
  std::vector<std::string> snippets;
};

// A snippet as an import makes it.
struct ImportedExample {
  std::u16string title;
  std::u16string abbreviation;
  std::u16string text;  // its beginning
};

// What an import did, for the user and for taking it back.
struct ImportReport {
  bool isDryRun = false;  // what it would have done

  std::size_t addedSnippets = 0;
  std::size_t duplicates = 0;            // skipped, as asked
  std::size_t presentSnippets = 0;       // of a library document: in the library already, left as they were
  std::size_t emptyRecords = 0;          // skipped: without title, abbreviation and text
  std::size_t refusedAbbreviations = 0;  // of snippets that were kept without them
  std::vector<ImportNotice> notices;     // one for each of these, and what the readers noticed
  std::vector<Error> refusedFiles;       // of several: those that nothing was taken from

  std::vector<ImportedExample> examples;  // of a dry run: the first ten snippets

  // What the library has got.
  std::vector<ImportedInto> imported;
  std::vector<std::string> restored;              // uuids of snippets that lay in the trash
  std::vector<std::string> addedFolders;          // uuids
  std::vector<std::string> excludedApplications;  // bundle identifiers; of a library document

  bool addedNothing() const {
    return addedSnippets == 0 && restored.empty() && addedFolders.empty() && excludedApplications.empty();
  }
  // The uuid of the folder that holds all that came; empty when there is no such one.
  std::string destination() const { return imported.size() == 1 ? imported.front().folder : std::string(); }
};

// In words for the user: the counts, in a few short sentences.
std::u16string summary(const ImportReport& report);
// A notice or refused file in one line each, what it is about first.
std::vector<std::u16string> details(const ImportReport& report);
// The summary and the details.
std::u16string text(const ImportReport& report);
// An object; docs/formats.md has its keys.
std::string json(const ImportReport& report);

// text() in UTF-8, whole or not at all. An existing file is replaced.
Status saveReport(const ImportReport& report, const std::filesystem::path& file);

}  // namespace quorlo
