#pragma once

#include "base/date.h"
#include "base/result.h"
#include "import/duplicate_snippets.h"
#include "import/import_data.h"
#include "import/import_options.h"
#include "import/import_report.h"
#include "store/exchange/library_document.h"
#include "store/lookup/abbreviation_rules.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quorlo {

class ManagedObject;
class ManagedObjectContext;
class QLCategory;
class QLSnippet;
class WorkProgress;

// One import on its way into a context: begun, given what one file or several hold, committed. Without a
// commit everything is taken out again. On the context's thread.
class ImportTransaction {
 public:
  // All outlive it. The progress can cancel every step, which is an error then.
  ImportTransaction(const ImportOptions& options, ManagedObjectContext& context, WorkProgress& progress);
  ImportTransaction(const ImportTransaction&) = delete;
  ImportTransaction& operator=(const ImportTransaction&) = delete;
  ~ImportTransaction();

  // Finds the destination; an error when it is gone.
  Status begin();

  Status add(const ImportData& data, WorkProgress& progress);
  // A file of this program's own form, by its own rules: what the library knows by its uuid stays as it is.
  Status addLibrary(std::string_view json, const std::filesystem::path& file);
  void refuse(Error error) { report_.refusedFiles.push_back(std::move(error)); }

  // Saves, unless it is a dry run.
  Result<ImportReport> commit();

 private:
  // Of one ImportData, by the indices that its snippets name.
  using Folders = std::vector<QLCategory*>;

  void addSnippet(const ImportedSnippet& record, const ImportData& data);
  bool skipsDuplicate(const ImportedSnippet& record, std::u16string_view title, const AttributedString& text);
  void setAbbreviation(QLSnippet& snippet, std::u16string_view abbreviation);
  void noteRefusal(const QLSnippet& snippet, std::u16string_view abbreviation, AbbreviationFault fault);
  void noteRefusal(const QLSnippet& snippet, std::u16string_view abbreviation, const QLSnippet& holder);
  void noteRefusal(const QLSnippet& snippet, std::u16string message);
  void restoreTrashed();
  void restore(const LibraryReadReport::Trashed& trashed);
  void noteAdded(const QLSnippet& snippet);
  QLCategory* folderFor(const ImportedSnippet& record, const ImportData& data);
  QLCategory* folderOfTitle(const std::u16string& title);
  QLCategory* folderOfUuid(const std::string& uuid) const;
  void readFolders();
  void forgetUnusedFolder();
  void insert(const std::shared_ptr<ManagedObject>& record);
  Status mayGoOn() const;

  const ImportOptions options_;
  ManagedObjectContext& context_;
  WorkProgress& progress_;
  const Date now_;
  ImportReport report_;
  std::vector<std::shared_ptr<ManagedObject>> inserted_;
  std::vector<LibraryReadReport::Trashed> trashed_;              // to be restored
  std::vector<std::function<void()>> restorations_;              // what undoes each of those that are done
  std::unordered_map<std::u16string, QLCategory*> userFolders_;  // by title
  std::int64_t lastSort_ = 0;
  QLCategory* destination_ = nullptr;    // null as filed
  std::shared_ptr<QLCategory> unfiled_;  // takes records without a folder; null until the library has it
  std::optional<DuplicateSnippets> duplicates_;
  std::unordered_map<std::string, std::size_t> places_;  // in report_.imported, by folder
};

}  // namespace quorlo
