#include "import/snippet_importer.h"

#include "import/file_bytes.h"
#include "import/import_transaction.h"
#include "import/work_progress.h"
#include "store/context/managed_object_context.h"
#include "store/library_editing.h"
#include "store/localized_format.h"
#include "store/records/folder_types.h"
#include "store/records/ql_app.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "text/utf.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace quorlo {
namespace {

constexpr double kSaveBegins = 0.3;  // of the work

bool isUntouched(const QLSnippet& snippet) {
  return snippet.useCount() == 0 && !snippet.deletionDate() &&
         snippet.modifiedDate() == snippet.creationDate();
}

// What is to go is found first and deleted then, so that an import that is cancelled until then has changed
// nothing.
class Undo {
 public:
  Undo(const ImportReport& report, ManagedObjectContext& context) : report_(report), context_(context) {}

  void findSnippets() {
    std::unordered_map<std::string_view, std::string_view> folderOf;
    for (const auto& group : report_.imported) {
      for (const auto& uuid : group.snippets) folderOf.emplace(uuid, group.folder);
    }
    const auto snippets = context_.fetch<QLSnippet>({});
    if (!snippets) return;
    const std::unordered_set<std::string_view> restored(report_.restored.begin(), report_.restored.end());
    for (const auto& each : snippets.value()) {
      if (restored.contains(each->uuid()) && !each->deletionDate()) goesToTrash_.push_back(each);
      const auto imported = folderOf.find(each->uuid());
      if (imported == folderOf.end()) continue;
      if (isUntouched(*each) && folderOfChoice(*each) == imported->second) {
        goes_.push_back(each);
        ++undone_.removedSnippets;
      } else {
        ++undone_.keptSnippets;
      }
    }
  }

  void removeSnippets() {
    for (const auto& each : goes_) context_.deleteObject(*each);
    for (const auto& each : goesToTrash_) each->moveToTrash();
    undone_.removedSnippets += goesToTrash_.size();
  }

  void removeFolders() {
    const std::unordered_set<std::string_view> made(report_.addedFolders.begin(), report_.addedFolders.end());
    const auto folders = context_.fetch<QLCategory>({});
    if (!folders) return;
    for (const auto& each : folders.value()) {
      if (!made.contains(each->uuid()) || !each->snippets().empty()) continue;
      context_.deleteObject(*each);
      ++undone_.removedFolders;
    }
  }

  void removeExcludedApplications() {
    for (const auto& bundleID : report_.excludedApplications) {
      const auto apps = context_.fetch<QLApp>(
          {.predicate = Predicate::all(
               {QLApp::kBundleID.equals(bundleID).inParentheses(),
                QLApp::kType.equals(static_cast<std::int64_t>(AppType::Excluded)).inParentheses()})});
      if (!apps) continue;
      for (const auto& each : apps.value()) context_.deleteObject(*each);
    }
  }

  UndoneImport undone() const { return undone_; }

 private:
  const ImportReport& report_;
  ManagedObjectContext& context_;
  std::vector<std::shared_ptr<QLSnippet>> goes_;
  std::vector<std::shared_ptr<QLSnippet>> goesToTrash_;  // where they were before
  UndoneImport undone_;
};

}  // namespace

std::u16string summary(const UndoneImport& undone) {
  auto text = localizedCount(static_cast<std::int64_t>(undone.removedSnippets), u"1 snippet was removed.",
                             u"%d snippets were removed.");
  if (undone.keptSnippets > 0) {
    text += u' ' + localizedCount(static_cast<std::int64_t>(undone.keptSnippets),
                                  u"1 snippet has been changed or used since and stays.",
                                  u"%d snippets have been changed or used since and stay.");
  }
  return text;
}

Result<ImportReport> importSnippets(const ImportData& data, const ImportOptions& options,
                                    ManagedObjectContext& context, WorkProgress& progress) {
  WorkProgress adding(progress, 0, kSaveBegins);
  WorkProgress saving(progress, kSaveBegins, 1);
  ImportTransaction transaction(options, context, saving);
  if (auto status = transaction.begin(); !status) return status.error();
  if (auto status = transaction.add(data, adding); !status) return status.error();
  return transaction.commit();
}

Result<UndoneImport> undoImport(const ImportReport& report, ManagedObjectContext& context,
                                WorkProgress& progress) {
  Undo undo(report, context);
  undo.findSnippets();
  if (progress.isCancelled()) return importWasCancelled();
  undo.removeSnippets();
  undo.removeFolders();
  undo.removeExcludedApplications();
  const auto saved = context.save([&progress](double fraction) {
    progress.setFraction(fraction);
    return !progress.isCancelled();
  });
  if (!saved) return progress.isCancelled() ? importWasCancelled() : saved.error();
  return undo.undone();
}

}  // namespace quorlo
