#pragma once

#include "fakes/fake_main_queue.h"
#include "store/context/managed_object_context.h"
#include "store/records/ql_snippet.h"
#include "store/sqlite/file/store_opening.h"
#include "store/sqlite/sqlite_record_store.h"

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace quorlo {

// The library of a directory as the program has it open: the file and its main context.
class OpenLibrary {
 public:
  explicit OpenLibrary(const std::filesystem::path& directory) {
    auto opened = openStore(directory, {now()});
    if (!opened) {
      failure_ = opened.error().message;
      return;
    }
    auto store = std::make_unique<SqliteRecordStore>(std::move(opened).value());
    store_ = store.get();
    context_ = std::make_unique<ManagedObjectContext>(
        queue_,
        ManagedObjectContext::Configuration{
            .name = "view_context", .transactionAuthor = "main_app", .now = now, .store = std::move(store)});
    if (const auto loaded = context_->load(); !loaded) {
      failure_ = storeLoadFailure(store_->database(), loaded.error(), now()).message;
    }
  }

  const std::string& failure() const { return failure_; }  // empty when it is open
  ManagedObjectContext& context() { return *context_; }
  SqliteDatabase& database() { return store_->database(); }
  FakeMainQueue& queue() { return queue_; }

  template <class Record>
  std::vector<std::shared_ptr<Record>> all() const {
    return context_->fetch(FetchRequest<Record>()).value();
  }

 private:
  static Date now() { return std::chrono::system_clock::now(); }

  FakeMainQueue queue_;
  SqliteRecordStore* store_ = nullptr;
  std::unique_ptr<ManagedObjectContext> context_;
  std::string failure_;
};

}  // namespace quorlo
