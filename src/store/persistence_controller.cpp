#include "store/persistence_controller.h"

#include "base/localized.h"
#include "base/log.h"
#include "platform/environment.h"
#include "store/context/logged_fetch.h"
#include "store/lookup/snippet_predicates.h"
#include "store/records/ql_app.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/records/ql_user.h"
#include "store/sqlite/sqlite_database.h"
#include "store/sqlite/sqlite_record_store.h"
#include "store/sqlite/store_opening.h"
#include "store/upkeep/built_in_folders.h"
#include "store/upkeep/store_maintenance.h"
#include "text/utf.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <utility>

namespace quorlo {
namespace {

constexpr Seconds kSaveDelay(3.5);
constexpr Seconds kLongestSaveDelay(60);  // while saves fail
constexpr Seconds kStartUpPhase(3.0);
// Of a save, once the start is over, for a lock that another process holds: windows and menu stand still
// meanwhile.
constexpr std::chrono::seconds kSavePatience(2);

constexpr std::u16string_view kExampleText =
    u"This is an example snippet. Type its abbreviation in any application, and this text takes its place.";
constexpr std::u16string_view kExampleAbbreviation = u"xmpl";

Predicate isOfType(CategoryType type) {
  return QLCategory::kType.equals(static_cast<std::int64_t>(type));
}

}  // namespace

Result<std::unique_ptr<PersistenceController>> PersistenceController::open(MainQueue& mainQueue,
                                                                           const Environment& environment,
                                                                           Options options) {
  auto database = openStore(environment.dataDirectory(), {.now = environment.now()});
  if (!database) return database.error();
  auto store = std::make_unique<SqliteRecordStore>(std::move(database).value());
  auto& opened = store->database();
  options.store = std::move(store);
  auto controller = std::make_unique<PersistenceController>(mainQueue, environment, std::move(options));
  if (const auto status = controller->context_->load(); !status) {
    return storeLoadFailure(opened, status.error(), environment.now());
  }
  mainQueue.runAfter(kStartUpPhase,
                     controller->life_.guard([&opened] { opened.setBusyTimeout(kSavePatience); }));
  return controller;
}

PersistenceController::PersistenceController(MainQueue& mainQueue, const Environment& environment,
                                             Options options)
    : mainQueue_(mainQueue),
      environment_(environment),
      saveDelay_(kSaveDelay),
      lastSaveRequestDate(mainQueue.now()) {
  context_ = std::make_unique<ManagedObjectContext>(
      mainQueue, ManagedObjectContext::Configuration{
                     .name = "view_context",
                     .transactionAuthor = "main_app",
                     .now = [&environment] { return environment.now(); },
                     .store = std::move(options.store),
                     .registerObserver = [this](auto& context) { observeObjectsDidChange(context); },
                     .findMacroStrings = std::move(options.findMacroStrings),
                 });
}

void PersistenceController::observeObjectsDidChange(ManagedObjectContext& context) {
  if (observation_ || &context != context_.get()) return;
  observation_ =
      context.observeObjectsDidChange([this](const ChangeSet&) { saveAfterDidChangeNotification(); });
}

// What others have saved is told as well, and leaves nothing to save.
void PersistenceController::saveAfterDidChangeNotification() {
  if (saveDeferrals_ > 0 || !context_->hasChanges() || std::exchange(isWaitingForSave, true)) return;
  mainQueue_.runAfter(saveDelay_, life_.guard([this] {
    if (saveDeferrals_ > 0) {
      isWaitingForSave = false;
      return;
    }
    const bool saved = trySave();
    isWaitingForSave = false;
    saveDelay_ = saved ? kSaveDelay : std::min(2 * saveDelay_, kLongestSaveDelay);
    if (saved) {
      context_->releaseRichTexts();
    } else {
      saveAfterDidChangeNotification();
    }
  }));
}

// The reference time is that of the controller's creation and never moves, so that only the requests of
// the start-up wait.
void PersistenceController::requestDeferredSave() {
  if (mainQueue_.now() - lastSaveRequestDate > kStartUpPhase) {
    save();
    return;
  }
  if (std::exchange(saveTimerIsRunning, true)) return;
  mainQueue_.runAfter(kSaveDelay, life_.guard([this] {
    saveTimerIsRunning = false;
    requestDeferredSave();
  }));
}

void PersistenceController::save() {
  trySave();
}

bool PersistenceController::trySave() {
  if (!context_->hasChanges()) return true;
  const auto status = context_->save();
  if (!status) logError("Unresolved error " + status.error().message);
  return status.ok();
}

std::shared_ptr<QLCategory> PersistenceController::folder(std::string_view uuid) const {
  return context_->recordOfUuid<QLCategory>(uuid);
}

std::shared_ptr<QLCategory> PersistenceController::builtInFolder(CategoryType type) const {
  return quorlo::builtInFolder(*context_, type);
}

std::vector<std::shared_ptr<QLCategory>> PersistenceController::userFoldersByTitle(
    std::u16string_view part) const {
  return loggedFetch<QLCategory>(
      *context_,
      {.predicate = Predicate::all({isOfType(CategoryType::Folder), QLCategory::kTitle.contains(part)})},
      "ERROR: #TzUo4tG; Couldn't fetch Categories. ");
}

std::vector<std::shared_ptr<QLCategory>> PersistenceController::foldersOfSection(SourceType section,
                                                                                 CategoryType orType) const {
  const auto isInSection = QLCategory::kSourceType.equals(static_cast<std::int64_t>(section));
  return loggedFetch<QLCategory>(
      *context_,
      {.predicate = Predicate::any({isInSection.inParentheses(), isOfType(orType).inParentheses()}),
       .sortDescriptors = QLCategory::sortDescriptors()},
      "ERROR: #fos2Hc8; Couldn't fetch Categories. ");
}

std::vector<std::shared_ptr<QLCategory>> PersistenceController::allFolders() const {
  return loggedFetch<QLCategory>(*context_, {.sortDescriptors = QLCategory::sortDescriptors()},
                                 "ERROR: #afo7Mk3; Couldn't fetch Categories. ");
}

std::u16string PersistenceController::nextUntitledName() const {
  const auto name = localized(u"Untitled");
  const auto alike = loggedFetch<QLCategory>(
      *context_,
      {.predicate = Predicate::all(
           {isOfType(CategoryType::Folder),
            Predicate::any({QLCategory::kTitle.equals(name), QLCategory::kTitle.contains(name)})})},
      "ERROR: #ukPhtjj; Couldn't fetch Categories. ", " - ");
  const auto isTaken = [&alike](const std::u16string& candidate) {
    return std::ranges::any_of(alike, [&](const auto& each) { return each->title() == candidate; });
  };
  auto candidate = name;
  for (int number = 2; isTaken(candidate); ++number)
    candidate = name + u' ' + toUtf16(std::to_string(number));
  return candidate;
}

std::shared_ptr<QLSnippet> PersistenceController::snippet(std::string_view uuid) const {
  return context_->recordOfUuid<QLSnippet>(uuid);
}

std::shared_ptr<QLSnippet> PersistenceController::snippetForAbbreviation(
    std::u16string_view abbreviation) const {
  if (auto live = context_->liveSnippet(abbreviation); live && live.value()) return live.value();
  return loggedFetchOfFirst<QLSnippet>(*context_,
                                       {.predicate = QLSnippet::kAbbreviation.equals(abbreviation)},
                                       "ERROR: #ss7fw0Q1; Couldn't fetch Snipet. ");
}

std::vector<std::u16string> PersistenceController::activeAbbreviations() const {
  const auto snippets = loggedFetch<QLSnippet>(
      *context_,
      {.predicate = Predicate::all({QLSnippet::kAbbreviation.isNotNil().inParentheses(), liveClause()})},
      "ERROR: #aab4Ws6; Couldn't fetch Snippets. ");
  std::vector<std::u16string> abbreviations;
  for (const auto& each : snippets) abbreviations.push_back(each->abbreviation());
  return abbreviations;
}

std::vector<std::shared_ptr<QLSnippet>> PersistenceController::trashedSnippets() const {
  return loggedFetch<QLSnippet>(*context_, {.predicate = QLSnippet::kDeletionDate.isNotNil().inParentheses()},
                                "ERROR: #288frw; Couldn't fetch Snippets. ");
}

std::vector<std::shared_ptr<QLSnippet>> PersistenceController::snippetsOutsideSharedFolders() const {
  return loggedFetch<QLSnippet>(*context_, {.predicate = outsideSharedFolders()},
                                "ERROR: #sos9Fq1; Couldn't fetch Snippets. ");
}

std::shared_ptr<QLApp> PersistenceController::ruleApplication(std::string_view bundleID,
                                                              std::int64_t type) const {
  return loggedFetchOfFirst<QLApp>(
      *context_,
      {.predicate = Predicate::all(
           {QLApp::kBundleID.equals(bundleID).inParentheses(), QLApp::kType.equals(type).inParentheses()})},
      "ERROR: #rLapp4k; Couldn't fetch App. ");
}

std::shared_ptr<QLUser> PersistenceController::currentUser() {
  auto found = context_->fetch<QLUser>({.fetchLimit = 1});
  if (!found) {
    logError("ERROR: #r3L3f; Couldn't fetch User. " + found.error().message);
    return nullptr;
  }
  return found.value().empty() ? context_->insert<QLUser>() : found.value().front();
}

std::shared_ptr<QLSnippet> PersistenceController::createExampleSnippet() {
  auto example = context_->insert<QLSnippet>();
  example->setTitle(localized(u"Example Snippet"));
  example->setTitleIsCustom(true);
  example->setPlainText(localized(kExampleText));
  if (!context_->otherLiveSnippet(kExampleAbbreviation, *example)) {
    example->setAbbreviation(std::u16string(kExampleAbbreviation));
  }
  return example;
}

void PersistenceController::openFiles(const std::vector<std::filesystem::path>& files) {
  if (fileOpener_) return fileOpener_(files);
  logError("ERROR: #oPn1mp - Files were opened before anything can import them.");
}

Subscription PersistenceController::deferSaves() {
  ++saveDeferrals_;
  return Subscription(life_.guard([this] {
    if (--saveDeferrals_ == 0) saveAfterDidChangeNotification();
  }));
}

bool PersistenceController::hasRepaired(std::string_view name) const {
  const auto repaired = context_->hasRepaired(name);
  if (!repaired) logError("ERROR: #hRp5Kd; Couldn't read what was repaired. " + repaired.error().message);
  return repaired && repaired.value();
}

void PersistenceController::noteRepaired(std::string_view name) {
  if (!trySave()) return;
  if (const auto noted = context_->noteRepaired(name); !noted) {
    logError("ERROR: #nRp8Tz; Couldn't note what was repaired. " + noted.error().message);
  }
}

void PersistenceController::createBuiltInFolders() {
  quorlo::createBuiltInFolders(*context_);
}
void PersistenceController::markTitlesAsCustom() {
  quorlo::markTitlesAsCustom(*context_);
}
void PersistenceController::fixEmptyAbbreviations() {
  quorlo::fixEmptyAbbreviations(*context_);
}

Status PersistenceController::migrateFolders() {
  if (auto status = quorlo::migrateFolders(*context_); !status) {
    logError("ERROR: #rwg8gnm - " + status.error().message);
    return status;
  }
  countSnippets();
  requestDeferredSave();
  return {};
}

void PersistenceController::mergeDuplicateUsers() {
  quorlo::mergeDuplicateUsers(*context_);
  save();
}
void PersistenceController::mergeDuplicateFolders() {
  quorlo::mergeDuplicateFolders(*context_);
  save();
}
void PersistenceController::purgeTrash() {
  quorlo::purgeTrash(*context_, environment_.now(), environment_.timeZone());
}
void PersistenceController::countSnippets() {
  quorlo::countSnippets(*context_);
}

}  // namespace quorlo
