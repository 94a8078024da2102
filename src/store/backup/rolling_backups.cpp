#include "store/backup/rolling_backups.h"

#include "base/log.h"
#include "store/backup/library_backups.h"
#include "store/context/managed_object_context.h"
#include "store/records/ql_snippet.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace quorlo {
namespace {

constexpr std::chrono::hours kDay(24);
constexpr std::chrono::hours kHour(1);

bool isEmpty(const ManagedObjectContext& context) {
  const auto snippets = context.fetch<QLSnippet>({.fetchLimit = 1});
  return snippets.ok() && snippets.value().empty();
}

}  // namespace

RollingBackups::RollingBackups(Dependencies dependencies) : its_(std::move(dependencies)) {}

void RollingBackups::start() {
  changes_ = its_.context.observeObjectsDidChange([this](const ChangeSet&) { noteChange(); });
  lookIn(kSettleTime);
}

// A look that is overdue by the wall clock waits for a timer that stood still while the machine slept.
void RollingBackups::noteChange() {
  const auto now = its_.now();
  if (!its_.isOn() || (nextLook_ && now < *nextLook_)) return;
  const Seconds wait = notBefore_ - now;
  const bool clockWasSetBack = wait > kDay;
  lookIn(clockWasSetBack ? kSettleTime : std::max(wait, kSettleTime));
}

void RollingBackups::lookIn(Seconds delay) {
  nextLook_ = its_.now() + std::chrono::duration_cast<Date::duration>(delay);
  its_.mainQueue.runAfter(delay, life_.guard([this, awaited = ++awaitedLook_] {
    if (awaited == awaitedLook_) look();
  }));
}

void RollingBackups::look() {
  nextLook_.reset();
  if (!its_.isOn()) return;
  const auto now = its_.now();
  const auto backups = its_.backups.folder().backups();
  const auto newest = backups.empty() ? Date::min() : backups.front().date;
  if (backups.empty() && isEmpty(its_.context)) return;
  // A newest copy from the future says that the clock was wrong then, or is wrong now and may soon be right.
  const bool isFromTheFuture = newest >= now + kDay;
  if (isFromTheFuture && !std::exchange(hasWaitedForClock_, true)) return lookIn(kHour);
  if (!isFromTheFuture && newest > now - kDay) return lookIn(std::min<Seconds>(newest + kDay - now, kDay));
  hasWaitedForClock_ = false;
  its_.backups.add(life_.guard([this](const Result<BackupFolder::Addition>& added) { didAdd(added); }));
}

void RollingBackups::didAdd(const Result<BackupFolder::Addition>& added) {
  if (added) {
    hasFailed_ = false;
    notBefore_ = added.value().backup.date + kDay;
    if (added.value().isNew) logInfo("The library was backed up to " + added.value().backup.file.string());
    return;
  }
  logWarning("WARNING: #bKp1fl - The library was not backed up: " + added.error().message);
  if (!std::exchange(hasFailed_, true)) its_.failed(added.error());
  lookIn(kHour);
}

}  // namespace quorlo
