#pragma once

#include "fakes/fake_user_defaults.h"
#include "store/context/background_context.h"
#include "store/history/persistent_history_observer.h"
#include "store/sqlite/file/store_opening.h"
#include "store/sqlite/sqlite_record_store.h"
#include "x11/pumped_queue.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <utility>

namespace quorlo {

template <class T>
T orAbort(Result<T> result) {
  if (!result) std::abort();
  return std::move(result).value();
}

inline Date systemNow() {
  return std::chrono::system_clock::now();
}

// The library of a directory as another process has it open.
inline std::unique_ptr<ManagedObjectContext> openElsewhere(const std::filesystem::path& directory,
                                                           std::function<Date()> now = systemNow) {
  return orAbort(
      openBackgroundContext(directory / kStoreFileName,
                            {.name = "other_context", .transactionAuthor = "other", .now = std::move(now)}));
}

// The library of a directory as the application has it open, with its observer.
struct ObservedLibrary {
  explicit ObservedLibrary(const std::filesystem::path& directory,
                           std::chrono::milliseconds busyTimeout = std::chrono::seconds(5))
      : view(queue,
             {.name = "view_context",
              .transactionAuthor = "main_app",
              .now = systemNow,
              .store = std::make_unique<SqliteRecordStore>(orAbort(openStore(directory, {systemNow()})))}),
        observer(AppTarget::app, {.mainQueue = queue,
                                  .defaults = defaults,
                                  .viewContext = view,
                                  .storeFile = directory / kStoreFileName,
                                  .now = [this] { return now; },
                                  .busyTimeout = busyTimeout}) {
    if (!view.load()) std::abort();
  }

  PumpedQueue queue;
  FakeUserDefaults defaults;
  Date now = systemNow();
  ManagedObjectContext view;
  PersistentHistoryObserver observer;
};

}  // namespace quorlo
