#include "app/shell/app_setup.h"

#include "app/settings/settings_controller.h"
#include "app/shell/menu/navigation_model.h"
#include "platform/user_defaults.h"
#include "store/context/managed_object_context.h"
#include "store/persistence_controller.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"

#include <memory>
#include <string>
#include <unordered_set>
#include <utility>
#include <variant>
#include <vector>

namespace quorlo {
namespace {

constexpr const char* kSnippetListSearchText = "SnippetListSearchText";
constexpr const char* kTitlesAreMarked = "HasMigratedTo308";
constexpr const char* kEmptyAbbreviationsAreFixed = "HasMigratedToVersion23";
constexpr const char* kFoldersAreMigrated = "HasMigratedToVersion300g";

// In one pass, since all snippets may be selected.
std::vector<std::shared_ptr<QLSnippet>> snippetsOf(const ManagedObjectContext& context,
                                                   const std::vector<std::string>& uuids) {
  if (uuids.empty()) return {};
  const std::unordered_set<std::string> wanted(uuids.begin(), uuids.end());
  auto snippets = context.fetch<QLSnippet>({});
  if (!snippets) return {};
  std::erase_if(snippets.value(), [&](const auto& each) { return !wanted.contains(each->uuid()); });
  return std::move(snippets).value();
}

}  // namespace

AppSetup::AppSetup(Dependencies dependencies) : use_(std::move(dependencies)) {}

void AppSetup::once(const char* flag, const std::function<bool()>& step) {
  const auto* value = use_.defaults.value(DefaultsDomain::standard, flag);
  const auto* isDone = value ? std::get_if<bool>(value) : nullptr;
  const bool isDoneHere = isDone && *isDone;
  const bool isDoneInLibrary = use_.persistence.hasRepaired(flag);
  if (!isDoneHere && !isDoneInLibrary && !step()) return;
  if (!isDoneInLibrary) use_.persistence.noteRepaired(flag);
  if (!isDoneHere) use_.defaults.setValue(DefaultsDomain::standard, flag, true);
}

Status AppSetup::prepareStore() {
  auto& context = use_.persistence.managedObjectContext();
  use_.persistence.observeObjectsDidChange(context);
  context.setName("view_context");
  context.setTransactionAuthor("main_app");
  auto observation = use_.observeRemoteChanges();
  use_.defaults.removeValue(DefaultsDomain::standard, kSnippetListSearchText);
  once(kTitlesAreMarked, [this] {
    use_.persistence.markTitlesAsCustom();
    return true;
  });
  use_.persistence.createBuiltInFolders();
  return observation;
}

Status AppSetup::migrateStore() {
  once(kEmptyAbbreviationsAreFixed, [this] {
    use_.persistence.fixEmptyAbbreviations();
    return true;
  });
  once(kFoldersAreMigrated, [this] { return use_.persistence.migrateFolders().ok(); });
  if (auto saved = use_.persistence.mergeDuplicateUsers(); !saved) return saved;
  return use_.persistence.mergeDuplicateFolders();
}

void AppSetup::restoreSelection() {
  if (const auto uuid = use_.settings.selectedCategoryUUID()) {
    use_.navigation.setSelectedCategory(use_.persistence.folder(*uuid));
  }
  const auto uuids = use_.settings.selectedSnippetUUIDs();
  use_.navigation.setSelectedSnippets(snippetsOf(use_.persistence.managedObjectContext(), uuids));
}

void AppSetup::recordSelection() {
  const auto folder = use_.navigation.selectedCategory();
  use_.settings.setSelectedCategoryUUID(folder ? std::optional(folder->uuid()) : std::nullopt);
  std::vector<std::string> uuids;
  for (const auto& snippet : use_.navigation.selectedSnippets()) uuids.push_back(snippet->uuid());
  use_.settings.setSelectedSnippetUUIDs(uuids);
  use_.persistence.save();
}

}  // namespace quorlo
