#include "store/context/managed_object_context.h"

#include "platform/main_queue.h"
#include "store/context/managed_object.h"
#include "store/context/revival.h"
#include "store/context/store_access.h"
#include "store/records/ql_snippet.h"

#include <algorithm>
#include <cassert>
#include <chrono>
#include <compare>
#include <utility>

namespace quorlo {
namespace {

constexpr Seconds kFollowUpDelay(0.2);
constexpr std::size_t kTidyAfterDeletions = 64;

const Property* foreignProperty(Entity entity, const std::optional<Predicate>& predicate,
                                const std::vector<SortDescriptor>& order) {
  if (predicate) {
    if (const auto* found = predicate->propertyForeignTo(entity)) return found;
  }
  const auto found =
      std::ranges::find_if(order, [entity](const auto& each) { return each.key->entity != entity; });
  return found == order.end() ? nullptr : found->key;
}

Error foreignPropertyError(Entity entity, const Property& property) {
  return {std::string(entityName(entity)) + " records have no property " + std::string(property.name) +
          " of " + std::string(entityName(property.entity)) + " records"};
}

bool comesBefore(const ManagedObject& left, const ManagedObject& right,
                 const std::vector<SortDescriptor>& order) {
  for (const auto& [key, ascending] : order) {
    const auto result = compare(key->read(left), key->read(right));
    if (std::is_lt(result)) return ascending;
    if (std::is_gt(result)) return !ascending;
  }
  return left.objectID() < right.objectID();
}

}  // namespace

ManagedObjectContext::ManagedObjectContext(MainQueue& mainQueue, Configuration configuration)
    : mainQueue_(&mainQueue), configuration_(std::move(configuration)) {}

ManagedObjectContext::ManagedObjectContext(Configuration configuration)
    : mainQueue_(nullptr), configuration_(std::move(configuration)) {}

ManagedObjectContext::~ManagedObjectContext() {
  for (auto& each : tables_) {
    for (auto& row : each.rows) {
      if (!row.record) continue;
      row.record->dropRelationships();
      row.record->context_ = nullptr;
    }
  }
}

Date ManagedObjectContext::now() const {
  return std::chrono::floor<std::chrono::microseconds>(configuration_.now());
}

Status ManagedObjectContext::load() {
  if (!configuration_.store) return {};
  auto status = configuration_.store->load(*this);
  registerObserver();
  return status;
}

void ManagedObjectContext::insert(const std::shared_ptr<ManagedObject>& record) {
  assert(record->objectID_.number == 0);
  if (record->objectID_.number != 0) return;
  enter(record);
  record->awakeFromInsert(*this);
  if (hasUuid(record->entity())) uuidIndex(record->entity()).add(*record);
  pending_.noteInsertion(record);
  unsaved_.noteInsertion(record);
  scheduleProcessing();
}

void ManagedObjectContext::enter(const std::shared_ptr<ManagedObject>& record) {
  auto& into = table(record->entity());
  record->objectID_.number = ++into.lastNumber;
  record->context_ = this;
  into.rows.push_back({into.lastNumber, record});
  record->enterIndexes(*this);
  if (record->entity() == Entity::snippet) searchIndex_.noteChange(static_cast<QLSnippet&>(*record));
}

void ManagedObjectContext::deleteObject(ManagedObject& record) {
  if (record.context_ != this) return;
  const auto held = record.shared_from_this();
  record.prepareForDeletion();
  if (record.entity() == Entity::snippet) searchIndex_.remove(static_cast<QLSnippet&>(record));
  if (hasUuid(record.entity())) uuidIndex(record.entity()).remove(record);
  record.context_ = nullptr;
  record.isDeleted_ = true;

  auto& from = table(record.entity());
  std::ranges::lower_bound(from.rows, record.objectID_.number, {}, &Row::number)->record = nullptr;
  if (++from.deletedCount > kTidyAfterDeletions && 2 * from.deletedCount > from.rows.size()) {
    std::erase_if(from.rows, [](const Row& row) { return !row.record; });
    from.deletedCount = 0;
  }
  pending_.noteDeletion(held);
  auto& rows = byRow_[static_cast<std::size_t>(record.entity())];
  if (origin_ == Origin::user) {
    unsaved_.noteDeletion(held);
  }
  if (unsaved_.holds(record)) {
    rows[record.rowNumber_] = nullptr;
  } else {
    rows.erase(record.rowNumber_);
  }
  scheduleProcessing();
}

Result<std::vector<std::shared_ptr<ManagedObject>>> ManagedObjectContext::fetch(
    Entity entity, const std::optional<Predicate>& predicate, const std::vector<SortDescriptor>& order,
    std::size_t limit) const {
  if (const auto* foreign = foreignProperty(entity, predicate, order))
    return foreignPropertyError(entity, *foreign);

  auto found = matches(entity, predicate, order.empty() ? limit : 0);
  const auto wanted = limit == 0 ? found.size() : std::min(limit, found.size());
  if (!order.empty()) {
    std::ranges::partial_sort(
        found, found.begin() + static_cast<std::ptrdiff_t>(wanted),
        [&order](const auto* left, const auto* right) { return comesBefore(*left, *right, order); });
  }
  std::vector<std::shared_ptr<ManagedObject>> records;
  records.reserve(wanted);
  for (std::size_t i = 0; i < wanted; ++i) {
    found[i]->awakeFromFetch();
    records.push_back(found[i]->shared_from_this());
  }
  return records;
}

void ManagedObjectContext::prepareSearch() const {
  if (searchIndex_.isBuilt()) return;
  std::vector<QLSnippet*> snippets;
  for (const auto& row : table(Entity::snippet).rows) {
    if (row.record) snippets.push_back(static_cast<QLSnippet*>(row.record.get()));
  }
  searchIndex_.build(snippets);
}

std::vector<ManagedObject*> ManagedObjectContext::matches(Entity entity,
                                                          const std::optional<Predicate>& predicate,
                                                          std::size_t limit) const {
  std::vector<ManagedObject*> found;
  // False once there are enough.
  const auto look = [&](ManagedObject& record) {
    if (!predicate || predicate->evaluate(record)) found.push_back(&record);
    return limit == 0 || found.size() < limit;
  };
  const auto required = predicate ? predicate->requiredText() : std::nullopt;
  if (!required) {
    for (const auto& row : table(entity).rows) {
      if (row.record && !look(*row.record)) break;
    }
    return found;
  }
  prepareSearch();
  auto candidates = searchIndex_.candidates(*required);
  if (!std::ranges::is_sorted(candidates, {}, &ManagedObject::objectID)) {
    std::ranges::sort(candidates, {}, &ManagedObject::objectID);
  }
  for (auto* each : candidates) {
    if (!look(*each)) break;
  }
  return found;
}

Result<std::size_t> ManagedObjectContext::count(Entity entity, const Predicate& predicate) const {
  if (const auto* foreign = predicate.propertyForeignTo(entity))
    return foreignPropertyError(entity, *foreign);
  return static_cast<std::size_t>(std::ranges::count_if(table(entity).rows, [&predicate](const Row& row) {
    return row.record && predicate.evaluate(*row.record);
  }));
}

std::shared_ptr<ManagedObject> ManagedObjectContext::object(ObjectID id) const {
  const auto& rows = table(id.entity).rows;
  const auto found = std::ranges::lower_bound(rows, id.number, {}, &Row::number);
  return found == rows.end() || found->number != id.number ? nullptr : found->record;
}

std::shared_ptr<ManagedObject> ManagedObjectContext::record(Entity entity, std::int64_t rowNumber) const {
  const auto& rows = byRow_[static_cast<std::size_t>(entity)];
  const auto found = rows.find(rowNumber);
  return found == rows.end() || found->second == nullptr ? nullptr : found->second->shared_from_this();
}

std::shared_ptr<ManagedObject> ManagedObjectContext::recordOfUuid(Entity entity,
                                                                  std::string_view uuid) const {
  auto& index = uuidIndexes_[static_cast<std::size_t>(entity)];
  if (!index.isBuilt()) index.build(matches(entity, std::nullopt, 0));
  auto* const found = index.find(uuid);
  if (found == nullptr) return nullptr;
  found->awakeFromFetch();
  return found->shared_from_this();
}

Result<std::shared_ptr<QLSnippet>> ManagedObjectContext::liveSnippet(std::u16string_view abbreviation) const {
  auto* const snippet = index_.abbreviations.find(abbreviation);
  if (snippet == nullptr) return std::shared_ptr<QLSnippet>();
  snippet->awakeFromFetch();
  return std::static_pointer_cast<QLSnippet>(snippet->shared_from_this());
}

std::shared_ptr<QLSnippet> ManagedObjectContext::otherLiveSnippet(std::u16string_view abbreviation,
                                                                  const QLSnippet& besides) const {
  auto* const snippet = index_.abbreviations.find(abbreviation, &besides);
  if (snippet == nullptr) return nullptr;
  snippet->awakeFromFetch();
  return std::static_pointer_cast<QLSnippet>(snippet->shared_from_this());
}

Result<bool> ManagedObjectContext::hasApp(std::string_view bundleID, std::int64_t type) const {
  return index_.hasApp(bundleID, type);
}

Result<bool> ManagedObjectContext::hasRepaired(std::string_view name) const {
  return configuration_.store ? configuration_.store->hasRepaired(name) : false;
}

Status ManagedObjectContext::noteRepaired(std::string_view name) {
  return configuration_.store ? configuration_.store->noteRepaired(name) : Status();
}

Status ManagedObjectContext::save(const SaveProgress& progress) {
  processPendingChanges();
  while (hasChanges()) {
    const auto changes = unsaved_.changes();
    if (configuration_.store) {
      const auto lost = configuration_.store->save(changes, writer(), now(), progress);
      if (!lost) return lost.error();
      if (!lost.value().empty()) {
        StoreAccess access(*this, StoreAccess::Purpose::refresh);
        for (const auto& each : lost.value()) access.remove(*each);
        continue;
      }
    }
    unsaved_.clear();
    for (const auto& each : changes.updated) each->changedProperties_.clear();
    for (const auto& each : changes.deleted) {
      byRow_[static_cast<std::size_t>(each->entity())].erase(each->rowNumber_);
    }
  }
  return {};
}

Result<std::vector<std::shared_ptr<QLSnippet>>> ManagedObjectContext::purgeTrash(Date limit) {
  if (auto saved = save(); !saved) return saved.error();
  auto purged = fetch<QLSnippet>({.predicate = QLSnippet::kDeletionDate.atMost(limit).inParentheses()});
  if (!purged || purged.value().empty()) return purged;
  if (configuration_.store) purged = configuration_.store->purge(purged.value(), limit, writer(), now());
  if (!purged) return purged;
  StoreAccess access(*this, StoreAccess::Purpose::refresh);
  for (const auto& each : purged.value()) access.remove(*each);
  return purged;
}

Status ManagedObjectContext::refresh(std::span<const HistoryChange> changes, Telling telling) {
  if (!configuration_.store) return {};
  telling_ = telling;
  auto status = configuration_.store->refresh(*this, changes);
  telling_ = Telling::inTurn;
  return status;
}

void ManagedObjectContext::processPendingChanges() {
  scheduleFollowUps();
  if (pending_.empty()) return;
  const auto changes = pending_.changes();
  pending_.clear();
  didChange_.notify(changes);
}

Subscription ManagedObjectContext::observeObjectsDidChange(std::function<void(const ChangeSet&)> callback) {
  return didChange_.add(std::move(callback));
}

void ManagedObjectContext::recordDidChange(ManagedObject& record, const Property& property) {
  if (property.isSearched) searchIndex_.noteChange(static_cast<QLSnippet&>(record));
  if (origin_ == Origin::loading) return;
  pending_.noteUpdate(record);
  scheduleProcessing();
  if (origin_ == Origin::user) noteUnsaved(record, property);
}

void ManagedObjectContext::noteUnsaved(ManagedObject& record, const Property& property) {
  if (property.isInverse) return;
  unsaved_.noteUpdate(record);
  auto& changed = record.changedProperties_;
  if (unsaved_.holdsInsertionOf(record) || std::ranges::find(changed, &property) != changed.end()) return;
  changed.push_back(&property);
  // Should others delete the snippet now, it is stored again whole.
  if (record.entity() == Entity::snippet && isContent(property)) static_cast<QLSnippet&>(record).richText();
}

// To the store it is a new record from now on, whose row is given already.
void ManagedObjectContext::keep(ManagedObject& lost) {
  unsaved_.noteInsertion(lost.shared_from_this());
  lost.changedProperties_.clear();
  lost.didLoseRow();
  for (const auto& [record, relationship] : lost.referrers()) noteUnsaved(record, relationship);
}

void ManagedObjectContext::keepEverything() {
  for (auto& each : tables_) {
    for (const auto& row : each.rows) {
      if (row.record && row.record->rowNumber_ != 0) keep(*row.record);
    }
  }
}

Status ManagedObjectContext::reload() {
  if (!configuration_.store) return {};
  processPendingChanges();
  const auto dropped = unsaved_.changes();
  unsaved_.clear();
  for (const auto& each : dropped.updated) each->changedProperties_.clear();
  for (const auto& each : dropped.deleted) {
    byRow_[static_cast<std::size_t>(each->entity())].erase(each->rowNumber_);
  }
  origin_ = Origin::others;
  for (const auto& each : dropped.inserted) {
    if (each->rowNumber_ == 0) deleteObject(*each);
  }
  endTakingFromStore();
  return configuration_.store->reload(*this);
}

void ManagedObjectContext::announceLater(const ManagedObject& record, std::string_view name) {
  if (origin_ == Origin::others) announcements_.emplace_back(record.shared_from_this(), name);
}

// What observers do in turn is done by the user again.
void ManagedObjectContext::endTakingFromStore() {
  origin_ = Origin::user;
  for (const auto& [record, name] : std::exchange(announcements_, {})) record->announce(name);
}

Result<std::optional<AttributedString>> ManagedObjectContext::richText(const QLSnippet& snippet) const {
  if (!configuration_.store) return std::optional<AttributedString>();
  return configuration_.store->richText(snippet);
}

void ManagedObjectContext::releaseRichTexts() {
  for (const auto& row : table(Entity::snippet).rows) {
    if (row.record && !unsaved_.holds(*row.record)) static_cast<QLSnippet&>(*row.record).releaseRichText();
  }
}

void ManagedObjectContext::scheduleProcessing() {
  if (takesFromStore() && telling_ == Telling::later) return;
  if (mainQueue_ == nullptr || std::exchange(processingIsScheduled_, true)) return;
  mainQueue_->run(life_.guard([this] {
    processingIsScheduled_ = false;
    processPendingChanges();
  }));
}

void ManagedObjectContext::registerObserver() {
  if (configuration_.registerObserver) configuration_.registerObserver(*this);
}

std::vector<std::u16string> ManagedObjectContext::macroStrings(std::u16string_view text) const {
  return configuration_.findMacroStrings ? configuration_.findMacroStrings(text)
                                         : std::vector<std::u16string>();
}

void ManagedObjectContext::followUpLater(QLSnippet& inserted) {
  followUps_.push_back(std::static_pointer_cast<QLSnippet>(inserted.shared_from_this()));
}

void ManagedObjectContext::scheduleFollowUps() {
  if (followUps_.empty()) return;
  mainQueue_->runAfter(kFollowUpDelay, life_.guard([inserted = std::exchange(followUps_, {})] {
    for (const auto& each : inserted) {
      if (const auto snippet = each.lock()) snippet->deriveTitle();
    }
  }));
}

}  // namespace quorlo
