#include "store/exchange/library_document.h"

#include "base/log.h"
#include "store/context/managed_object_context.h"
#include "store/exchange/json_document.h"
#include "store/exchange/library_exchange.h"
#include "store/lookup/abbreviation_rules.h"
#include "store/records/ql_app.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/upkeep/built_in_folders.h"
#include "text/quotation.h"
#include "text/utf.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>

namespace quorlo {
namespace {

// Puts a checked document into a context.
class LibraryInsertion {
 public:
  LibraryInsertion(ManagedObjectContext& context, const LibraryExchange& library, QLCategory* destination)
      : context_(context),
        library_(library),
        destination_(destination),
        allSnippets_(builtInFolder(context, CategoryType::AllSnippets)),
        unfiled_(destination != nullptr ? destination : allSnippets_.get()) {}

  // Finds what the library already holds, and what the document expects there in vain.
  Status prepare() {
    auto snippets = context_.fetch<QLSnippet>({});
    auto folders = context_.fetch<QLCategory>({});
    if (!snippets) return snippets.error();
    if (!folders) return folders.error();
    for (const auto& each : snippets.value()) snippets_.emplace(each->uuid(), each.get());
    for (const auto& each : folders.value()) folders_.emplace(each->uuid(), each.get());

    std::unordered_map<std::string_view, std::size_t> inDocument;
    for (const auto& each : library_.snippets) inDocument.emplace(each.uuid, 0);
    for (const auto& folder : library_.folders) {
      for (const auto& uuid : folder.snippets) {
        if (inDocument.contains(uuid) || snippets_.contains(uuid)) continue;
        return Error{"The folder \"" + toUtf8(folder.title) + "\" names the snippet " + uuid +
                     ", which is neither in the document nor in the library: add it or remove its name."};
      }
    }
    return {};
  }

  LibraryReadReport insert() {
    if (destination_ == nullptr) {
      for (const auto& each : library_.folders) insertFolder(each);
    }
    for (const auto& each : library_.snippets) insertSnippet(each);
    for (const auto& each : library_.excludedApplications) app(each, AppType::Excluded);
    return std::move(report_);
  }

 private:
  void insertFolder(const FolderExchange& form) {
    auto& folder = folders_[form.uuid];
    if (folder == nullptr) {
      folder = newFolder(form);
    }
    for (const auto& uuid : form.snippets) folderOf_.emplace(uuid, folder);
  }

  QLCategory* newFolder(const FolderExchange& form) {
    const auto folder = std::make_shared<QLCategory>();
    const bool isShared = form.type == static_cast<std::int64_t>(CategoryType::SharedFolder);
    folder->setUuid(form.uuid);
    folder->setTitle(form.title);
    folder->setType(form.type);
    folder->setSourceType(static_cast<std::int64_t>(isShared ? SourceType::Public : SourceType::Folders));
    folder->setSort(form.sort);
    folder->setShortcutKeyCode(form.shortcutKeyCode);
    folder->setShortcutModifierFlags(form.shortcutModifierFlags);
    folder->setExpansionBehavior(form.expansionBehavior);
    folder->setCreationDate(now_);
    context_.insert(folder);
    report_.addedFolders.push_back(folder);
    report_.added.push_back(folder);
    for (const auto& each : form.allowedApps) folder->addAllowedApp(app(each, AppType::Allowed));
    for (const auto& each : form.blockedApps) folder->addBlockedApp(app(each, AppType::Blocked));
    return folder.get();
  }

  void insertSnippet(const SnippetExchange& form) {
    const auto found = folderOf_.find(form.uuid);
    if (const auto known = snippets_.find(form.uuid); known != snippets_.end()) {
      return notePresent(*known->second, found == folderOf_.end() ? nullptr : found->second);
    }
    auto* const folder = found == folderOf_.end() ? unfiled_ : found->second;
    const auto snippet = std::make_shared<QLSnippet>();
    snippet->setUuid(form.uuid);
    snippet->setTitle(form.title.empty() ? titleFromText(form.text.string()) : form.title);
    snippet->setTitleIsCustom(!form.title.empty());
    snippet->setText(form.text);
    snippet->setFormatted(form.formatted);
    snippet->setCreationDate(now_);
    snippet->setModifiedDate(now_);
    takeAbbreviation(snippet, form, folder);
    context_.insert(snippet);
    snippet->setCategory(folder);
    report_.addedSnippets.push_back(snippet);
    report_.added.push_back(snippet);
  }

  void notePresent(QLSnippet& snippet, QLCategory* folder) {
    if (!snippet.deletionDate()) {
      ++report_.presentSnippets;
    } else {
      report_.trashed.push_back({std::static_pointer_cast<QLSnippet>(snippet.shared_from_this()), folder});
    }
  }

  // Before the snippet is inserted, so that it does not find itself.
  void takeAbbreviation(const std::shared_ptr<QLSnippet>& snippet, const SnippetExchange& form,
                        const QLCategory* folder) {
    const bool isShared =
        folder != nullptr && folder->sourceType() == static_cast<std::int64_t>(SourceType::Public);
    const auto fault = faultOfAbbreviation(form.abbreviation);
    const auto holder =
        isShared ? std::shared_ptr<QLSnippet>() : context_.liveSnippet(form.abbreviation).value();
    if (fault || holder) {
      report_.warnings.push_back({snippet, form.abbreviation, fault, holder});
    } else {
      snippet->setAbbreviation(form.abbreviation);
    }
  }

  QLApp& app(const std::string& bundleID, AppType type) {
    const auto rawType = static_cast<std::int64_t>(type);
    const auto predicate = Predicate::all(
        {QLApp::kBundleID.equals(bundleID).inParentheses(), QLApp::kType.equals(rawType).inParentheses()});
    const auto found = context_.fetch<QLApp>({.predicate = predicate, .fetchLimit = 1});
    if (found && !found.value().empty()) return *found.value().front();
    const auto app = std::make_shared<QLApp>();
    app->setBundleID(bundleID);
    app->setType(rawType);
    context_.insert(app);
    report_.added.push_back(app);
    return *app;
  }

  ManagedObjectContext& context_;
  const LibraryExchange& library_;
  QLCategory* const destination_;
  const std::shared_ptr<QLCategory> allSnippets_;
  QLCategory* const unfiled_;  // of snippets without a folder
  const Date now_ = context_.now();
  LibraryReadReport report_;
  std::unordered_map<std::string, QLSnippet*> snippets_;  // in the library before
  std::unordered_map<std::string, QLCategory*> folders_;
  std::unordered_map<std::string_view, QLCategory*> folderOf_;  // by snippet
};

// The JSON values, many times the size of what they say, are gone when this returns.
Result<LibraryExchange> parseLibrary(std::string_view json) {
  const auto value = parseJson(json);
  if (!value) return value.error();
  return libraryFromJson(value.value());
}

}  // namespace

void logWarnings(const LibraryReadReport& report) {
  for (const auto& [snippet, abbreviation, fault, holder] : report.warnings) {
    // A title that the document does not give is a piece of the text.
    const auto name = snippet->titleIsCustom() ? '"' + toUtf8(quotation(snippet->title())) + '"'
                                               : "the snippet " + snippet->uuid();
    std::string_view reason = "is already in use";
    if (fault) {
      reason = *fault == AbbreviationFault::tooLong ? "is longer than 30 characters" : "contains a space";
    }
    logWarning(fmt::format("WARNING: #ldc7Abr - The abbreviation of {} {}; the snippet was kept without it.",
                           name, reason));
  }
}

Result<LibraryReadReport> readLibrary(std::string_view json, std::string_view name,
                                      ManagedObjectContext& context, QLCategory* destination) {
  const auto fault = [name](const Error& error) { return Error{std::string(name) + ": " + error.message}; };
  const auto library = parseLibrary(json);
  if (!library) return fault(library.error());
  LibraryInsertion insertion(context, library.value(), destination);
  if (const auto status = insertion.prepare(); !status) return fault(status.error());
  return insertion.insert();
}

Result<LibraryReadReport> readLibraryFile(const std::filesystem::path& file, ManagedObjectContext& context,
                                          QLCategory* destination) {
  const auto content = readDocumentFile(file);
  if (!content) return content.error();
  return readLibrary(content.value(), file.string(), context, destination);
}

}  // namespace quorlo
