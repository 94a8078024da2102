#pragma once

#include "base/date.h"
#include "base/life_token.h"
#include "base/result.h"
#include "platform/main_queue.h"
#include "store/history/app_target.h"
#include "store/history/history_reader.h"
#include "store/history/operation_queue.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

class ManagedObjectContext;
class StoreFileWatcher;
class UserDefaults;

// Brings what other processes, and the background contexts of this one, have saved into the main context,
// and merges folders that have become duplicates thereby. Main thread; the history is read and folders are
// merged on a queue of its own, one operation at a time.
//
// The time of the last transaction processed is kept in the defaults of the application group, each
// target's under a key of its own. It moves only once all that came before is in the main context: after a
// failure the same history is read again, a while later or on the next change.
class PersistentHistoryObserver {
 public:
  struct Dependencies {
    MainQueue& mainQueue;
    UserDefaults& defaults;
    ManagedObjectContext& viewContext;  // its author's and its name's transactions are the own ones
    std::filesystem::path storeFile;    // exists
    std::function<Date()> now;          // any thread
    // Whether the library's name still leads to the file that the context was read from; asked at each
    // change. Until it does again, changes wait.
    std::function<bool()> storeIsInPlace = nullptr;
    std::chrono::milliseconds busyTimeout = std::chrono::seconds(5);  // longer ones are left to a retry
  };

  PersistentHistoryObserver(AppTarget target, Dependencies dependencies);
  PersistentHistoryObserver(const PersistentHistoryObserver&) = delete;
  PersistentHistoryObserver& operator=(const PersistentHistoryObserver&) = delete;
  // Waits for the operation under way.
  ~PersistentHistoryObserver();

  // Processes what came while nobody watched, and from then on what comes. After a failure changes are not
  // noticed by themselves.
  Status startObserving();

  // Calls during one that is under way come to one more when it is done.
  void processStoreRemoteChanges();

 private:
  template <class Outcome>
  void perform(std::function<Outcome()> operation, std::function<void(Outcome)> completion);

  void didRead(const Result<NewHistory>& read);
  void takeOver(const std::shared_ptr<const NewHistory>& history, std::size_t begin);
  void didTakeOver(const NewHistory& history);
  std::vector<std::int64_t> duplicatesAmong(const std::vector<std::int64_t>& folders) const;
  Result<bool> deduplicateEach(const std::vector<std::int64_t>& folders) const;
  void didDeduplicate(const NewHistory& history, const Result<bool>& merged);
  void didProcess(const NewHistory& history);
  void purgeIfDue();
  void retryLater();
  void finish();
  std::optional<Date> storedDate(AppTarget target) const;

  const AppTarget target_;
  const Dependencies its_;
  HistoryReader reader_;                  // used on the queue only
  std::optional<Date> processedThrough_;  // nil until the first history was read
  std::optional<MainQueue::Instant> lastPurge_;
  Seconds retryDelay_;
  bool isProcessing_ = false;
  bool mustProcessAgain_ = false;
  LifeToken life_;
  OperationQueue queue_;
  std::unique_ptr<StoreFileWatcher> watcher_;
};

}  // namespace quorlo
