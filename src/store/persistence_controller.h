#pragma once

#include "base/life_token.h"
#include "base/subscription.h"
#include "platform/main_queue.h"
#include "store/managed_object_context.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

class Environment;
class QLApp;
class QLSnippet;
class QLUser;

// Owns the main context, saves it a while after it has changed, and answers the fetches that the rest
// of the program has in common. One instance; main thread.
class PersistenceController {
 public:
  struct Options {
    // What ManagedObjectContext::Configuration says of them.
    std::function<Status(const ChangeSet&)> commit = nullptr;
    std::function<std::vector<std::u16string>(std::u16string_view)> findMacroStrings = nullptr;
  };

  // `mainQueue` and `environment` outlive the controller.
  PersistenceController(MainQueue& mainQueue, const Environment& environment, Options options);
  PersistenceController(MainQueue& mainQueue, const Environment& environment)
      : PersistenceController(mainQueue, environment, Options{}) {}

  // The one that the program has bound; only for its user interface and its main file.
  static PersistenceController& shared();

  ManagedObjectContext& managedObjectContext() { return *context_; }

  // Calls saveAfterDidChangeNotification whenever the main context has changed. A second call does
  // nothing, however many ask; any other context saves itself.
  void observeObjectsDidChange(ManagedObjectContext& context);

  // Saves 3.5 s after the first change since the last such save.
  void saveAfterDidChangeNotification();

  // Saves at once, or a while later during the first 3 s after the start.
  void requestDeferredSave();

  // A failure is logged and leaves the changes in the context.
  void save();

  // Null or empty when there is none; a failed fetch is logged and counts as none.
  std::shared_ptr<QLSnippet> snippet(std::string_view uuid) const;
  // A live snippet before others.
  std::shared_ptr<QLSnippet> snippetForAbbreviation(std::u16string_view abbreviation) const;
  std::shared_ptr<QLApp> ruleApplication(std::string_view bundleID, std::int64_t type) const;

  // The statistics record, made when the library has none. Null only when the fetch failed.
  std::shared_ptr<QLUser> currentUser();

 private:
  MainQueue& mainQueue_;
  std::unique_ptr<ManagedObjectContext> context_;
  Subscription observation_;
  bool isWaitingForSave = false;
  bool saveTimerIsRunning = false;
  const MainQueue::Instant lastSaveRequestDate;
  LifeToken life_;
};

}  // namespace quorlo
