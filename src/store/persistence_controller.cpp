#include "store/persistence_controller.h"

#include "base/log.h"
#include "platform/environment.h"
#include "store/ql_app.h"
#include "store/ql_snippet.h"
#include "store/ql_user.h"
#include "store/snippet_predicates.h"

#include <utility>

namespace quorlo {
namespace {

constexpr Seconds kSaveDelay(3.5);
constexpr Seconds kStartUpPhase(3.0);

// The first record of a fetch; a failure is logged as `failure` and its message.
template <class Record>
std::shared_ptr<Record> first(const ManagedObjectContext& context, const Predicate& predicate,
                              const char* failure) {
  auto found = context.fetch<Record>({.predicate = predicate, .fetchLimit = 1});
  if (!found) logError(failure + found.error().message);
  return found && !found.value().empty() ? found.value().front() : nullptr;
}

}  // namespace

PersistenceController::PersistenceController(MainQueue& mainQueue, const Environment& environment,
                                             Options options)
    : mainQueue_(mainQueue), lastSaveRequestDate(mainQueue.now()) {
  context_ = std::make_unique<ManagedObjectContext>(
      mainQueue, ManagedObjectContext::Configuration{
                     .kind = ManagedObjectContext::Kind::main,
                     .name = "view_context",
                     .transactionAuthor = "main_app",
                     .now = [&environment] { return environment.now(); },
                     .commit = std::move(options.commit),
                     .registerObserver = [this](auto& context) { observeObjectsDidChange(context); },
                     .findMacroStrings = std::move(options.findMacroStrings),
                 });
}

void PersistenceController::observeObjectsDidChange(ManagedObjectContext& context) {
  if (observation_ || &context != context_.get()) return;
  observation_ =
      context.observeObjectsDidChange([this](const ChangeSet&) { saveAfterDidChangeNotification(); });
}

void PersistenceController::saveAfterDidChangeNotification() {
  if (std::exchange(isWaitingForSave, true)) return;
  mainQueue_.runAfter(kSaveDelay, life_.guard([this] {
    save();
    isWaitingForSave = false;
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
  if (!context_->hasChanges()) return;
  if (const auto status = context_->save(); !status) logError("Unresolved error " + status.error().message);
}

std::shared_ptr<QLSnippet> PersistenceController::snippet(std::string_view uuid) const {
  return first<QLSnippet>(*context_, QLSnippet::kUuid.equals(uuid).inParentheses(),
                          "ERROR: #HRdfhu; Couldn't fetch Snipet. ");
}

std::shared_ptr<QLSnippet> PersistenceController::snippetForAbbreviation(
    std::u16string_view abbreviation) const {
  if (auto live = context_->liveSnippet(abbreviation); live && live.value()) return live.value();
  return first<QLSnippet>(*context_, QLSnippet::kAbbreviation.equals(abbreviation),
                          "ERROR: #ss7fw0Q1; Couldn't fetch Snipet. ");
}

std::shared_ptr<QLApp> PersistenceController::ruleApplication(std::string_view bundleID,
                                                              std::int64_t type) const {
  return first<QLApp>(*context_,
                      Predicate::all({QLApp::kBundleID.equals(bundleID).inParentheses(),
                                      QLApp::kType.equals(type).inParentheses()}),
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

}  // namespace quorlo
