#include "store/history/persistent_history_observer.h"

#include "base/log.h"
#include "platform/user_defaults.h"
#include "store/context/background_context.h"
#include "store/context/managed_object_context.h"
#include "store/history/folder_deduplication.h"
#include "store/history/store_file_watcher.h"
#include "store/records/ql_category.h"
#include "store/upkeep/duplicate_folders.h"

#include <algorithm>
#include <span>
#include <string>
#include <utility>
#include <variant>

namespace quorlo {
namespace {

constexpr std::chrono::hours kHistoryLife = std::chrono::days(90);
constexpr std::chrono::hours kPurgeInterval = std::chrono::days(1);
constexpr std::size_t kRecordsAtOnce = 200;   // without a look at the clock
constexpr std::size_t kToldAtOnce = 100'000;  // a multiple of the above
constexpr Seconds kLongestTurn(0.03);
constexpr std::chrono::minutes kClockTolerance(5);  // of steps back of the clock since the library was read
constexpr Seconds kFirstRetry(0.5);
constexpr Seconds kLastRetry(60);

std::string dateKey(AppTarget target) {
  return "lastHistoryTransactionTimeStamp-" + std::string(rawValue(target));
}

}  // namespace

PersistentHistoryObserver::PersistentHistoryObserver(AppTarget target, Dependencies dependencies)
    : target_(target),
      its_(std::move(dependencies)),
      reader_(its_.storeFile, its_.viewContext.writer(), its_.now() - kClockTolerance, its_.busyTimeout),
      retryDelay_(kFirstRetry) {}

PersistentHistoryObserver::~PersistentHistoryObserver() = default;

Status PersistentHistoryObserver::startObserving() {
  auto watcher =
      StoreFileWatcher::watch(its_.storeFile, [&mainQueue = its_.mainQueue, process = life_.guard([this] {
                                processStoreRemoteChanges();
                              })] { mainQueue.run(process); });
  processStoreRemoteChanges();
  if (!watcher) return watcher.error();
  watcher_ = std::move(watcher).value();
  return {};
}

// Runs the operation on the queue and hands what it returns to the completion on the main thread.
template <class Outcome>
void PersistentHistoryObserver::perform(std::function<Outcome()> operation,
                                        std::function<void(Outcome)> completion) {
  queue_.addOperation([&mainQueue = its_.mainQueue, operation = std::move(operation),
                       completion = life_.guard(std::move(completion))] {
    mainQueue.run([outcome = operation(), completion]() mutable { completion(std::move(outcome)); });
  });
}

void PersistentHistoryObserver::processStoreRemoteChanges() {
  if (its_.storeIsInPlace && !its_.storeIsInPlace()) return;
  mustProcessAgain_ = true;
  if (std::exchange(isProcessing_, true)) return;
  mustProcessAgain_ = false;
  const auto after = processedThrough_ ? processedThrough_ : storedDate(target_);
  perform<Result<NewHistory>>(
      [this, after] {
        auto history = reader_.read(after.value_or(Date::min()));
        reader_.mergeLog();
        return history;
      },
      [this](const auto& history) { didRead(history); });
}

void PersistentHistoryObserver::didRead(const Result<NewHistory>& read) {
  if (!read) {
    logError("ERROR: #evvfd - Persistent History Tracking failed with error " + read.error().message);
    return retryLater();
  }
  if (!read.value().lastProcessed) return didProcess(read.value());
  takeOver(std::make_shared<const NewHistory>(read.value()), 0);
}

// From the change at `begin` on. An import may have saved a million records: windows and keys get their turn
// meanwhile, and the context's observers, who may look at everything, hear of it seldom.
void PersistentHistoryObserver::takeOver(const std::shared_ptr<const NewHistory>& history,
                                         std::size_t begin) {
  const std::span<const HistoryChange> changes = history->changes.records;
  const auto began = its_.mainQueue.now();
  while (begin < changes.size()) {
    if (its_.mainQueue.now() - began > kLongestTurn) {
      return its_.mainQueue.run(life_.guard([this, history, begin] { takeOver(history, begin); }));
    }
    const auto part = changes.subspan(begin, std::min(kRecordsAtOnce, changes.size() - begin));
    const auto status = its_.viewContext.refresh(part, ManagedObjectContext::Telling::later);
    if (!status) {
      its_.viewContext.processPendingChanges();
      logError("ERROR: #m7rgH; Couldn't take over what other programs have saved. " + status.error().message);
      return retryLater();
    }
    begin += part.size();
    if (begin % kToldAtOnce == 0) its_.viewContext.processPendingChanges();
  }
  its_.viewContext.processPendingChanges();
  didTakeOver(*history);
}

void PersistentHistoryObserver::didTakeOver(const NewHistory& history) {
  const auto folders = duplicatesAmong(history.changes.foldersToCheck);
  if (folders.empty()) return didProcess(history);
  // What is unsaved here in a folder that goes would be left without one.
  if (const auto saved = its_.viewContext.save(); !saved) {
    logError("ERROR: #s4vMg; Couldn't save before duplicate folders are merged. " + saved.error().message);
    return retryLater();
  }
  perform<Result<bool>>([this, folders] { return deduplicateEach(folders); },
                        [this, history](const auto& merged) { didDeduplicate(history, merged); });
}

// One of each group of duplicates that the folders belong to. Spares the background context, which loads the
// whole library, when there is nothing to merge.
std::vector<std::int64_t> PersistentHistoryObserver::duplicatesAmong(
    const std::vector<std::int64_t>& folders) const {
  const auto all = folders.empty() ? Result(std::vector<std::shared_ptr<QLCategory>>())
                                   : its_.viewContext.fetch<QLCategory>({});
  std::vector<std::int64_t> found;
  if (!all) return folders;
  const auto isAmong = [&folders](const auto& folder) {
    return std::ranges::find(folders, folder->rowNumber()) != folders.end();
  };
  for (auto& [survivor, alike] : duplicateFolders(all.value())) {
    alike.push_back(survivor);
    const auto one = std::ranges::find_if(alike, isAmong);
    if (one != alike.end()) found.push_back((*one)->rowNumber());
  }
  return found;
}

// On the queue.
Result<bool> PersistentHistoryObserver::deduplicateEach(const std::vector<std::int64_t>& folders) const {
  const auto context = openBackgroundContext(
      its_.storeFile,
      {.name = "deduplication_context", .transactionAuthor = "history_observer", .now = its_.now},
      LibraryUse::changing);
  if (!context) return context.error();
  bool merged = false;
  for (const auto each : folders) {
    const auto had = deduplicate(each, *context.value());
    if (!had) return had.error();
    merged |= had.value();
  }
  return merged;
}

void PersistentHistoryObserver::didDeduplicate(const NewHistory& history, const Result<bool>& merged) {
  if (!merged) {
    logError("ERROR: #dDup3s; Couldn't merge duplicate folders. " + merged.error().message);
    return retryLater();
  }
  if (merged.value()) mustProcessAgain_ = true;  // the background context has saved
  didProcess(history);
}

void PersistentHistoryObserver::didProcess(const NewHistory& history) {
  retryDelay_ = kFirstRetry;
  if (history.newest) processedThrough_ = history.newest;
  if (history.lastProcessed) {
    its_.defaults.setValue(DefaultsDomain::appGroup, dateKey(target_), *history.lastProcessed);
  }
  purgeIfDue();
}

// What every target with a date has processed is needed by nobody, and is kept a while for those who look
// for a fault.
void PersistentHistoryObserver::purgeIfDue() {
  const auto instant = its_.mainQueue.now();
  if (!processedThrough_ || (lastPurge_ && instant - *lastPurge_ < kPurgeInterval)) return finish();
  lastPurge_ = instant;
  auto through = std::min(its_.now() - kHistoryLife, *processedThrough_);
  for (const auto target : kAppTargets) {
    if (const auto date = storedDate(target); date && target != target_) through = std::min(through, *date);
  }
  perform<Status>([this, through] { return reader_.purge(through); },
                  [this](const auto& status) {
                    if (!status)
                      logError("ERROR: #pRg3h; Couldn't purge the history. " + status.error().message);
                    finish();
                  });
}

void PersistentHistoryObserver::retryLater() {
  if (retryDelay_ <= kLastRetry) {
    its_.mainQueue.runAfter(retryDelay_, life_.guard([this] { processStoreRemoteChanges(); }));
    retryDelay_ *= 2;
  }
  finish();
}

void PersistentHistoryObserver::finish() {
  isProcessing_ = false;
  if (mustProcessAgain_) processStoreRemoteChanges();
}

std::optional<Date> PersistentHistoryObserver::storedDate(AppTarget target) const {
  const auto* stored = its_.defaults.value(DefaultsDomain::appGroup, dateKey(target));
  const auto* date = stored == nullptr ? nullptr : std::get_if<Date>(stored);
  return date == nullptr ? std::nullopt : std::optional(*date);
}

}  // namespace quorlo
