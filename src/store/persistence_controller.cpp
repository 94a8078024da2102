#include "store/persistence_controller.h"

#include "base/localized.h"
#include "base/log.h"
#include "platform/environment/environment.h"
#include "store/context/logged_fetch.h"
#include "store/lookup/snippet_predicates.h"
#include "store/records/ql_app.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/records/ql_user.h"
#include "store/sqlite/file/open_library_file.h"
#include "store/sqlite/file/store_opening.h"
#include "store/sqlite/sqlite_database.h"
#include "store/sqlite/sqlite_record_store.h"
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
// For a lock that another process holds: windows and menu stand still meanwhile.
constexpr std::chrono::seconds kPatience(2);
constexpr Seconds kRecoveryDelay(0.3);  // a file that is replaced may be deleted first
constexpr Seconds kRecoveryRetry(2.0);

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
  StoreOpeningNotes notes;
  auto database = openStore(environment.dataDirectory(),
                            {.now = environment.now(), .busyTimeout = kPatience, .notes = &notes});
  if (!database) return database.error();
  database.value()->setBusyTimeout(kPatience);
  auto store = std::make_unique<SqliteRecordStore>(std::move(database).value());
  auto& opened = *store;
  options.store = std::move(store);
  auto controller = std::make_unique<PersistenceController>(mainQueue, environment, std::move(options));
  if (const auto status = controller->context_->load(); !status) {
    return storeLoadFailure(opened.database(), status.error(), environment.now());
  }
  controller->file_ =
      std::make_unique<OpenLibraryFile>(opened, *controller->context_, environment.dataDirectory(),
                                        [&environment] { return environment.now(); });
  controller->wasLeftUnclean_ = notes.logWasLeft;
  for (const auto& each : notes.setAside) {
    if (each.string().ends_with("-wal")) {
      controller->tell({LibraryNotice::Kind::logWasSetAside, each.string()});
    }
  }
  return controller;
}

PersistenceController::~PersistenceController() = default;

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
  if (!storeIsInPlace() && !file_->writesElsewhere()) return false;
  const auto status = context_->save();
  if (status) {
    failedSaves_ = 0;
    saveFailure_.reset();
  } else {
    noteFailedSave(status.error());
  }
  return status.ok();
}

// The first failure may be of a moment.
void PersistenceController::noteFailedSave(const Error& error) {
  logError("Unresolved error " + error.message);
  if (++failedSaves_ < 2) return;
  if (!std::exchange(saveFailure_, error)) tell({LibraryNotice::Kind::savesFail, error.message});
}

bool PersistenceController::storeIsInPlace() {
  if (!file_) return true;
  if (!recoveryIsDue_ && file_->look() == OpenLibraryFile::State::inPlace) return true;
  if (!recoveryIsDue_) recoverLater(kRecoveryDelay);
  return false;
}

void PersistenceController::makeSureOfStore() {
  if (!file_) return;
  const auto state = file_->look();
  if (state == OpenLibraryFile::State::inPlace) return;
  const auto notice = file_->recover(state);
  if (notice) return tell(notice.value());
  noteFailedSave(notice.error());
}

void PersistenceController::recoverLater(Seconds delay) {
  recoveryIsDue_ = true;
  mainQueue_.runAfter(delay, life_.guard([this] {
    recoveryIsDue_ = false;
    recover();
  }));
}

void PersistenceController::recover() {
  const auto state = file_->look();
  if (state == OpenLibraryFile::State::inPlace) return;
  if (saveDeferrals_ > 0 || file_->isJustBeingWritten()) return recoverLater(kRecoveryDelay);
  const bool wroteElsewhere = file_->writesElsewhere();
  const auto notice = file_->recover(state);
  if (!notice) {
    noteFailedSave(notice.error());
    return recoverLater(kRecoveryRetry);
  }
  if (notice.value().kind == LibraryNotice::Kind::fileWasReplaced) createBuiltInFolders();
  if (!wroteElsewhere || !file_->writesElsewhere()) tell(notice.value());
}

void PersistenceController::setNoticeHandler(NoticeHandler handler) {
  noticeHandler_ = std::move(handler);
  for (const auto& each : std::exchange(untold_, {})) noticeHandler_(each);
}

void PersistenceController::tell(LibraryNotice notice) {
  if (noticeHandler_) return noticeHandler_(notice);
  untold_.push_back(std::move(notice));
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

Status PersistenceController::mergeDuplicateUsers() {
  quorlo::mergeDuplicateUsers(*context_);
  return context_->save();
}
Status PersistenceController::mergeDuplicateFolders() {
  quorlo::mergeDuplicateFolders(*context_);
  return context_->save();
}
void PersistenceController::purgeTrash() {
  quorlo::purgeTrash(*context_, environment_.now(), environment_.timeZone());
}
void PersistenceController::countSnippets() {
  quorlo::countSnippets(*context_);
}

}  // namespace quorlo
