#include "import/import_transaction.h"

#include "base/localized.h"
#include "import/file_bytes.h"
#include "import/work_progress.h"
#include "store/context/managed_object_context.h"
#include "store/exchange/library_document.h"
#include "store/library_editing.h"
#include "store/localized_format.h"
#include "store/lookup/abbreviation_rules.h"
#include "store/records/ql_app.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/upkeep/built_in_folders.h"
#include "store/uuid.h"
#include "text/line_breaks.h"
#include "text/quotation.h"
#include "text/utf.h"

#include <algorithm>
#include <unordered_set>
#include <utility>
#include <variant>

namespace quorlo {
namespace {

constexpr std::u16string_view kBlanks = u" \t\r\n\u00A0\u2028\u2029";
constexpr std::size_t kRecordsPerStep = 1000;
constexpr std::size_t kMostExamples = 10;

std::u16string_view trimmed(std::u16string_view text) {
  const auto start = std::min(text.find_first_not_of(kBlanks), text.size());
  text.remove_prefix(start);
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

bool isBlank(std::u16string_view text) {
  return text.find_first_not_of(kBlanks) == std::u16string_view::npos;
}

AttributedString textOf(const ImportedSnippet& record) {
  if (record.text.string().find(u'\r') == std::u16string::npos) return record.text;
  return withLineFeeds(record.text);
}

// A title that is the first line of its text stays one.
bool isDerived(std::u16string_view title, std::u16string_view text) {
  const auto start = std::min(text.find_first_not_of(kBlanks), text.size());
  return text.substr(start, title.size()) == title && title == titleFromText(text);
}

std::u16string nothingWasImported(const Error& error) {
  return localized(u"Nothing was imported.") + u' ' + toUtf16(error.message);
}

}  // namespace

ImportTransaction::ImportTransaction(const ImportOptions& options, ManagedObjectContext& context,
                                     WorkProgress& progress)
    : options_(options), context_(context), progress_(progress), now_(context.now()) {
  report_.isDryRun = options.isDryRun;
}

ImportTransaction::~ImportTransaction() {
  for (auto each = restorations_.rbegin(); each != restorations_.rend(); ++each) (*each)();
  for (auto each = inserted_.rbegin(); each != inserted_.rend(); ++each) context_.deleteObject(**each);
}

Status ImportTransaction::begin() {
  readFolders();
  unfiled_ = builtInFolder(context_, CategoryType::AllSnippets);
  if (const auto* titled = std::get_if<ImportIntoTitled>(&options_.destination)) {
    if (isBlank(titled->title)) return Error{toUtf8(localized(u"The new folder has no name. Give it one."))};
    destination_ = folderOfTitle(titled->title);
  } else if (const auto* chosen = std::get_if<ImportIntoFolder>(&options_.destination)) {
    destination_ = folderOfUuid(chosen->uuid);
    if (destination_ == nullptr) {
      return Error{toUtf8(
          localized(u"The folder to import into is not in the library any more. Choose another one."))};
    }
  }
  return {};
}

Status ImportTransaction::add(const ImportData& data, WorkProgress& progress) {
  if (options_.skipDuplicates && !duplicates_) duplicates_.emplace(context_);
  report_.notices.insert(report_.notices.end(), data.notices.begin(), data.notices.end());
  for (std::size_t i = 0; i < data.snippets.size(); ++i) {
    if (i % kRecordsPerStep == 0) {
      progress.setFraction(static_cast<double>(i) / static_cast<double>(data.snippets.size()));
      if (auto status = mayGoOn(); !status) return status;
    }
    addSnippet(data.snippets[i], data);
  }
  progress.setFraction(1);
  return mayGoOn();
}

void ImportTransaction::addSnippet(const ImportedSnippet& record, const ImportData& data) {
  if (isBlank(record.title) && isBlank(record.abbreviation) && isBlank(record.text.string())) {
    ++report_.emptyRecords;
    return;
  }
  auto text = textOf(record);
  const bool hasTitle = !isBlank(record.title) && !isDerived(record.title, text.string());
  auto title = hasTitle ? record.title : titleFromText(text.string());
  if (skipsDuplicate(record, title, text)) return;

  const auto snippet = std::make_shared<QLSnippet>();
  snippet->setUuid(randomUuid());
  snippet->setTitle(std::move(title));
  snippet->setTitleIsCustom(hasTitle);
  snippet->setText(std::move(text));
  snippet->setFormatted(static_cast<std::int64_t>(record.type));
  snippet->setCreationDate(now_);
  snippet->setModifiedDate(now_);
  setAbbreviation(*snippet, trimmed(record.abbreviation));
  insert(snippet);
  snippet->setCategory(folderFor(record, data));
  noteAdded(*snippet);
  if (duplicates_) duplicates_->add(*snippet);
}

bool ImportTransaction::skipsDuplicate(const ImportedSnippet& record, std::u16string_view title,
                                       const AttributedString& text) {
  const auto* const same = duplicates_ ? duplicates_->find(title, text) : nullptr;
  if (same == nullptr) return false;
  ++report_.duplicates;
  const auto abbreviation = trimmed(record.abbreviation);
  if (!abbreviation.empty() && abbreviation != same->abbreviation()) {
    report_.notices.push_back(
        {quotation(title),
         localizedFormat(u"The abbreviation “%@” was skipped with a duplicate.", quotation(abbreviation))});
  }
  return true;
}

// Before the snippet is inserted, so that it does not find itself.
void ImportTransaction::setAbbreviation(QLSnippet& snippet, std::u16string_view abbreviation) {
  if (abbreviation.empty()) return;
  if (const auto fault = faultOfAbbreviation(abbreviation)) return noteRefusal(snippet, abbreviation, *fault);
  if (const auto holder = context_.liveSnippet(abbreviation); holder && holder.value()) {
    return noteRefusal(snippet, abbreviation, *holder.value());
  }
  snippet.setAbbreviation(std::u16string(abbreviation));
}

void ImportTransaction::noteRefusal(const QLSnippet& snippet, std::u16string_view abbreviation,
                                    AbbreviationFault fault) {
  noteRefusal(snippet,
              localizedFormat(fault == AbbreviationFault::tooLong
                                  ? u"The abbreviation “%@” is longer than 30 characters; the snippet "
                                    u"was kept without it."
                                  : u"The abbreviation “%@” contains a space; the snippet was kept "
                                    u"without it.",
                              quotation(abbreviation)));
}

void ImportTransaction::noteRefusal(const QLSnippet& snippet, std::u16string_view abbreviation,
                                    const QLSnippet& holder) {
  noteRefusal(snippet, localizedFormat(u"The abbreviation “%@” is already in use by “%@”; the snippet was "
                                       u"kept without it.",
                                       quotation(abbreviation), quotation(holder.displayTitle())));
}

void ImportTransaction::noteRefusal(const QLSnippet& snippet, std::u16string message) {
  ++report_.refusedAbbreviations;
  report_.notices.push_back({quotation(snippet.displayTitle()), std::move(message)});
}

void ImportTransaction::noteAdded(const QLSnippet& snippet) {
  ++report_.addedSnippets;
  const auto folder = folderOfChoice(snippet);
  const auto [place, isNew] = places_.try_emplace(folder, report_.imported.size());
  if (isNew) report_.imported.push_back({folder, {}});
  report_.imported[place->second].snippets.push_back(snippet.uuid());
  if (options_.isDryRun && report_.examples.size() < kMostExamples) {
    report_.examples.push_back(
        {quotation(snippet.displayTitle()), snippet.abbreviation(), quotation(snippet.plainText())});
  }
}

QLCategory* ImportTransaction::folderFor(const ImportedSnippet& record, const ImportData& data) {
  if (destination_ != nullptr) return destination_;
  if (!record.folder || *record.folder >= data.folders.size()) return unfiled_.get();
  const auto& title = data.folders[*record.folder];
  return isBlank(title) ? unfiled_.get() : folderOfTitle(title);
}

QLCategory* ImportTransaction::folderOfTitle(const std::u16string& title) {
  auto& folder = userFolders_[title];
  if (folder != nullptr) return folder;
  const auto made = std::make_shared<QLCategory>();
  made->setUuid(randomUuid());
  made->setTitle(title);
  made->setSort(++lastSort_);
  made->setCreationDate(now_);
  made->setModifiedDate(now_);
  insert(made);
  report_.addedFolders.push_back(made->uuid());
  return folder = made.get();
}

QLCategory* ImportTransaction::folderOfUuid(const std::string& uuid) const {
  const auto found = context_.recordOfUuid<QLCategory>(uuid);
  return found && takesSnippets(*found) ? found.get() : nullptr;
}

// Of folders with the same title the first one in the sidebar counts.
void ImportTransaction::readFolders() {
  const auto folders = context_.fetch<QLCategory>({.sortDescriptors = QLCategory::sortDescriptors()});
  if (!folders) return;  // only a predicate of other records fails
  for (const auto& each : folders.value()) {
    lastSort_ = std::max(lastSort_, each->sort());
    if (takesSnippets(*each)) userFolders_.emplace(each->title(), each.get());
  }
}

Status ImportTransaction::addLibrary(std::string_view json, const std::filesystem::path& file) {
  auto read = readLibrary(json, file.string(), context_, destination_);
  if (!read) return read.error();
  auto& came = read.value();
  inserted_.insert(inserted_.end(), came.added.begin(), came.added.end());
  report_.presentSnippets += came.presentSnippets;
  for (const auto& each : came.addedFolders) report_.addedFolders.push_back(each->uuid());
  for (const auto& each : came.addedSnippets) noteAdded(*each);
  for (const auto& each : came.warnings) {
    if (each.fault) noteRefusal(*each.snippet, each.abbreviation, *each.fault);
    if (each.holder) noteRefusal(*each.snippet, each.abbreviation, *each.holder);
  }
  trashed_.insert(trashed_.end(), came.trashed.begin(), came.trashed.end());
  for (const auto& each : came.added) {
    if (each->entity() != Entity::app) continue;
    const auto& app = static_cast<const QLApp&>(*each);
    if (app.type() == static_cast<std::int64_t>(AppType::Excluded)) {
      report_.excludedApplications.push_back(app.bundleID());
    }
  }
  return mayGoOn();
}

// After everything else, so that it takes no abbreviation from a snippet that came.
void ImportTransaction::restoreTrashed() {
  std::unordered_set<const QLSnippet*> known;  // several documents may hold one snippet
  for (const auto& each : trashed_) {
    if (known.insert(each.snippet.get()).second) restore(each);
  }
}

// In its own folder, or in that of the document where its own is gone.
void ImportTransaction::restore(const LibraryReadReport::Trashed& trashed) {
  const auto& snippet = trashed.snippet;
  report_.restored.push_back(snippet->uuid());
  const auto abbreviation = snippet->abbreviation();
  const auto holder = abbreviation.empty() ? nullptr : context_.otherLiveSnippet(abbreviation, *snippet);
  if (holder) noteRefusal(*snippet, abbreviation, *holder);
  if (options_.isDryRun) return;
  restorations_.emplace_back([snippet, abbreviation, deletionDate = snippet->deletionDate(),
                              modifiedDate = snippet->modifiedDate(), folder = snippet->category()] {
    snippet->setDeletionDate(deletionDate);
    snippet->setAbbreviation(abbreviation);
    snippet->setCategory(folder.get());
    if (modifiedDate) snippet->setModifiedDate(*modifiedDate);
  });
  if (holder) snippet->setAbbreviation({});
  snippet->restoreFromTrash();
  if (trashed.folder != nullptr && folderOfChoice(*snippet).empty()) snippet->setCategory(trashed.folder);
}

Result<ImportReport> ImportTransaction::commit() {
  restoreTrashed();
  forgetUnusedFolder();
  if (options_.isDryRun) return std::move(report_);
  const auto goesOn = [this](double fraction) {
    progress_.setFraction(fraction);
    return !progress_.isCancelled();
  };
  if (const auto saved = context_.save(goesOn); !saved) {
    return progress_.isCancelled() ? importWasCancelled() : Error{toUtf8(nothingWasImported(saved.error()))};
  }
  inserted_.clear();
  restorations_.clear();
  return std::move(report_);
}

// The destination was made before it was known whether anything comes.
void ImportTransaction::forgetUnusedFolder() {
  if (destination_ == nullptr || !destination_->snippets().empty()) return;
  if (std::erase(report_.addedFolders, destination_->uuid()) == 0) return;
  std::erase_if(inserted_, [this](const auto& each) { return each.get() == destination_; });
  context_.deleteObject(*std::exchange(destination_, nullptr));
}

void ImportTransaction::insert(const std::shared_ptr<ManagedObject>& record) {
  context_.insert(record);
  inserted_.push_back(record);
}

Status ImportTransaction::mayGoOn() const {
  return progress_.isCancelled() ? Status(importWasCancelled()) : Status();
}

}  // namespace quorlo
