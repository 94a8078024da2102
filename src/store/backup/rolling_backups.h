#pragma once

#include "base/date.h"
#include "base/life_token.h"
#include "base/result.h"
#include "base/subscription.h"
#include "platform/main_queue.h"
#include "store/backup/backup_folder.h"

#include <functional>
#include <optional>

namespace quorlo {

class LibraryBackups;
class ManagedObjectContext;

// Has a copy of the library made for each day on which something was changed. While nothing changes, nothing
// runs. Main thread.
class RollingBackups {
 public:
  struct Dependencies {
    MainQueue& mainQueue;
    LibraryBackups& backups;
    ManagedObjectContext& context;  // the main context
    std::function<Date()> now;
    std::function<bool()> isOn;                // asked before each copy
    std::function<void(const Error&)> failed;  // once, until a copy succeeds again
  };

  // From the start, or a change, to the copy.
  static constexpr Seconds kSettleTime{60};

  // The references outlive the backups.
  explicit RollingBackups(Dependencies dependencies);
  RollingBackups(const RollingBackups&) = delete;
  RollingBackups& operator=(const RollingBackups&) = delete;

  // From now on.
  void start();

 private:
  void noteChange();
  void lookIn(Seconds delay);
  void look();
  void didAdd(const Result<BackupFolder::Addition>& added);

  Dependencies its_;
  Subscription changes_;
  std::optional<Date> nextLook_;  // while one is awaited
  unsigned awaitedLook_ = 0;      // an earlier one was replaced by it
  Date notBefore_;
  bool hasWaitedForClock_ = false;
  bool hasFailed_ = false;
  LifeToken life_;
};

}  // namespace quorlo
