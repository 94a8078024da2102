#pragma once

#include "base/log.h"
#include "fake_record_store.h"
#include "fakes/fake_environment.h"
#include "fakes/fake_main_queue.h"
#include "store/context/managed_object_context.h"
#include "store/persistence_controller.h"
#include "store/records/ql_app.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/records/ql_user.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace quorlo {

// An empty library with a clock that stands still until the test moves it. The log is collected.
struct TestLibrary {
  FakeMainQueue queue;
  FakeEnvironment environment;
  std::vector<std::string> log;
  Subscription redirection = redirectLog([this](LogLevel, std::string_view line) { log.emplace_back(line); });
  Status commitResult;
  std::vector<ChangeSet> commits;
  PersistenceController controller;
  ManagedObjectContext& context = controller.managedObjectContext();

  // Over a store that only notes what is saved, or the one given.
  explicit TestLibrary(std::unique_ptr<RecordStore> store = nullptr)
      : controller(
            queue, environment,
            {.store = store ? std::move(store) : std::make_unique<FakeRecordStore>(commits, commitResult)}) {}

  std::shared_ptr<QLSnippet> snippet(std::u16string title, std::u16string abbreviation = {}) {
    const auto snippet = context.insert<QLSnippet>();
    snippet->setTitle(std::move(title));
    snippet->setAbbreviation(std::move(abbreviation));
    return snippet;
  }

  std::shared_ptr<QLCategory> folder(CategoryType type, SourceType source = SourceType::Folders) {
    const auto folder = context.insert<QLCategory>();
    folder->setType(static_cast<std::int64_t>(type));
    folder->setSourceType(static_cast<std::int64_t>(source));
    return folder;
  }

  std::shared_ptr<QLApp> app(std::string bundleID, AppType type = AppType::Excluded) {
    const auto app = context.insert<QLApp>();
    app->setBundleID(std::move(bundleID));
    app->setType(static_cast<std::int64_t>(type));
    return app;
  }

  // The titles of the snippets that a fetch returns.
  std::vector<std::u16string> titles(const FetchRequest<QLSnippet>& request) {
    std::vector<std::u16string> found;
    const auto records = context.fetch(request);
    for (const auto& each : records.value()) found.push_back(each->title());
    return found;
  }
};

}  // namespace quorlo
