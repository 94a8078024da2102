#pragma once

#include "base/date.h"
#include "base/life_token.h"
#include "base/observers.h"
#include "base/result.h"
#include "base/subscription.h"
#include "store/context/change_log.h"
#include "store/context/entity.h"
#include "store/context/fetch_request.h"
#include "store/context/record_store.h"
#include "store/lookup/expansion_index.h"
#include "store/lookup/expansion_lookup.h"
#include "store/lookup/search_index.h"
#include "store/lookup/uuid_index.h"
#include "store/uuid.h"
#include "text/attributed_string.h"

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace quorlo {

class MainQueue;
class ManagedObject;
class QLSnippet;

// The records of the library in memory, each of them once, with what has changed since the last save.
// Fetches see unsaved changes. Main thread, or the one thread that uses a background context.
//
// The main context tells changes once per turn of the main queue: the first change of a turn puts
// processPendingChanges into the queue. A background context tells them when it is saved.
class ManagedObjectContext final : public ExpansionLookup {
 public:
  // Records get their uuid and creation date on insertion in the main context.
  enum class Kind { main, background };

  struct Configuration {
    std::string name = {};
    std::string transactionAuthor = {};
    std::string session = randomUuid();  // of this context among those of the same names in other processes

    std::function<Date()> now;  // the wall clock

    // Where the records are kept; without one they are in memory only.
    std::unique_ptr<RecordStore> store = nullptr;

    // Called by every snippet and folder, on insertion and on fetch, so that whoever saves can begin to
    // observe the context.
    std::function<void(ManagedObjectContext&)> registerObserver = nullptr;

    // The macro strings in a snippet's text, in the order of the text.
    std::function<std::vector<std::u16string>(std::u16string_view)> findMacroStrings = nullptr;
  };

  // The main context.
  ManagedObjectContext(MainQueue& mainQueue, Configuration configuration);
  // A background context.
  explicit ManagedObjectContext(Configuration configuration);
  ManagedObjectContext(const ManagedObjectContext&) = delete;
  ManagedObjectContext& operator=(const ManagedObjectContext&) = delete;
  ~ManagedObjectContext() override;

  Kind kind() const { return mainQueue_ == nullptr ? Kind::background : Kind::main; }
  const std::string& name() const { return configuration_.name; }
  void setName(std::string name) { configuration_.name = std::move(name); }
  const std::string& transactionAuthor() const { return configuration_.transactionAuthor; }
  void setTransactionAuthor(std::string author) { configuration_.transactionAuthor = std::move(author); }
  Writer writer() const { return {transactionAuthor(), name(), configuration_.session}; }
  Date now() const;  // in whole microseconds, as dates are stored

  // Takes every record in from the store, once, before anything else. Nothing counts as changed and nobody is
  // told. After an error the context is good for nothing.
  Status load();

  // The record must never have been in a context. A uuid and a creation date that it has are kept.
  void insert(const std::shared_ptr<ManagedObject>& record);
  template <std::derived_from<ManagedObject> Record>
  std::shared_ptr<Record> insert() {
    auto record = std::make_shared<Record>();
    insert(record);
    return record;
  }

  // Clears the record's relationships on both sides. Does nothing for a record of no or another context.
  void deleteObject(ManagedObject& record);

  // An error when the request names a property that the records do not have.
  template <std::derived_from<ManagedObject> Record>
  Result<std::vector<std::shared_ptr<Record>>> fetch(const FetchRequest<Record>& request) const {
    auto found = fetch(Record::kEntity, request.predicate, request.sortDescriptors, request.fetchLimit);
    if (!found) return found.error();
    std::vector<std::shared_ptr<Record>> records;
    records.reserve(found.value().size());
    for (auto& each : found.value()) records.push_back(std::static_pointer_cast<Record>(std::move(each)));
    return records;
  }

  // Reads the texts of all snippets for the searches that follow, which the first one does otherwise.
  void prepareSearch() const;

  // How many records a fetch with the predicate would return.
  Result<std::size_t> count(Entity entity, const Predicate& predicate) const;

  // Null when it is gone.
  std::shared_ptr<ManagedObject> object(ObjectID id) const;
  // By the row that it has in the store.
  std::shared_ptr<ManagedObject> record(Entity entity, std::int64_t rowNumber) const;

  // The snippet or folder of the uuid, without a look at the others; null when there is none.
  template <std::derived_from<ManagedObject> Record>
  std::shared_ptr<Record> recordOfUuid(std::string_view uuid) const {
    return std::static_pointer_cast<Record>(recordOfUuid(Record::kEntity, uuid));
  }

  Result<std::shared_ptr<QLSnippet>> liveSnippet(std::u16string_view abbreviation) const override;
  // The same among all snippets but one.
  std::shared_ptr<QLSnippet> otherLiveSnippet(std::u16string_view abbreviation,
                                              const QLSnippet& besides) const;
  Result<bool> hasApp(std::string_view bundleID, std::int64_t type) const override;

  // Repairs that are done once in the life of a library, which says by their names what has been done. One
  // that is kept nowhere says nothing.
  Result<bool> hasRepaired(std::string_view name) const;
  Status noteRepaired(std::string_view name);

  bool hasChanges() const { return !unsaved_.empty(); }

  // Tells the pending changes, then stores everything. After a failure all changes are still there.
  Status save(const SaveProgress& progress = {});

  // Saves, then deletes for good what has been in the trash since `limit` at least, also by what the store
  // holds at that moment: what others have restored stays. Returns what went.
  Result<std::vector<std::shared_ptr<QLSnippet>>> purgeTrash(Date limit);

  // Brings records up to what the store holds now, after others have saved. What is unsaved here wins
  // property by property, and counts are added up. A record that others have deleted goes, unless its unsaved
  // changes revive it (revival.h): then it stays as it is here, relationships included, and is stored again
  // by the next save. The rest is told like any change, but is not unsaved. After a failure the same changes
  // can be taken over again.
  enum class Telling {
    inTurn,
    // With the next change of the user's, or when processPendingChanges is called: for one part of many.
    later,
  };
  Status refresh(std::span<const HistoryChange> changes, Telling telling = Telling::inTurn);

  // The store keeps nothing of this any more: the next save writes every record anew, in the row that it has.
  // Rich texts that were not read are lost.
  void keepEverything();
  // The store is another one: the records become its own, and what is unsaved is dropped. After an error some
  // records may not be up to date; the same may be tried again.
  Status reload();

  // Lets go of the rich texts that can be read from the store again, those of unsaved records apart. What
  // attributedString() and its like have returned by reference is gone then.
  void releaseRichTexts();

  // Tells the observers what has changed since they were last told; nothing when nothing has.
  void processPendingChanges();
  Subscription observeObjectsDidChange(std::function<void(const ChangeSet&)> callback);

 private:
  friend class ManagedObject;
  friend class QLSnippet;
  friend class QLCategory;
  friend class QLApp;
  friend class StoreAccess;

  // Whose changes are being made. The user's are unsaved; those of others, read from the store, only have
  // to be told; what is loaded at the beginning is no change.
  enum class Origin { user, others, loading };

  // Ascending by object identifier; a deleted record leaves a null until the table is tidied.
  struct Row {
    std::uint64_t number;
    std::shared_ptr<ManagedObject> record;
  };
  struct Table {
    std::vector<Row> rows;
    std::uint64_t lastNumber = 0;
    std::size_t deletedCount = 0;
  };

  Result<std::vector<std::shared_ptr<ManagedObject>>> fetch(Entity entity,
                                                            const std::optional<Predicate>& predicate,
                                                            const std::vector<SortDescriptor>& order,
                                                            std::size_t limit) const;
  std::vector<ManagedObject*> matches(Entity entity, const std::optional<Predicate>& predicate,
                                      std::size_t limit) const;
  Table& table(Entity entity) { return tables_[static_cast<std::size_t>(entity)]; }
  const Table& table(Entity entity) const { return tables_[static_cast<std::size_t>(entity)]; }

  void enter(const std::shared_ptr<ManagedObject>& record);
  std::shared_ptr<ManagedObject> recordOfUuid(Entity entity, std::string_view uuid) const;
  UuidIndex& uuidIndex(Entity entity) const { return uuidIndexes_[static_cast<std::size_t>(entity)]; }
  void recordDidChange(ManagedObject& record, const Property& property);
  bool takesFromStore() const { return origin_ != Origin::user; }
  void noteUnsaved(ManagedObject& record, const Property& property);
  void keep(ManagedObject& lost);
  void announceLater(const ManagedObject& record, std::string_view name);
  void endTakingFromStore();
  Result<std::optional<AttributedString>> richText(const QLSnippet& snippet) const;
  void scheduleProcessing();
  void registerObserver();
  void scheduleFollowUps();
  void followUpLater(QLSnippet& inserted);
  std::vector<std::u16string> macroStrings(std::u16string_view text) const;

  MainQueue* const mainQueue_;  // null for a background context
  Configuration configuration_;
  std::array<Table, kEntityCount> tables_;
  ExpansionIndex index_;
  mutable SearchIndex searchIndex_;                          // made when it is first needed
  mutable std::array<UuidIndex, kEntityCount> uuidIndexes_;  // of snippets and folders
  ChangeLog pending_;                                        // since the last notification
  ChangeLog unsaved_;                                        // since the last save
  Origin origin_ = Origin::user;
  Telling telling_ = Telling::inTurn;
  // What the observers of records will be told once the store has been taken over.
  std::vector<std::pair<std::shared_ptr<const ManagedObject>, std::string_view>> announcements_;
  // The records that are in the store, by their rows; null for one that was deleted here and not saved yet.
  std::array<std::unordered_map<std::int64_t, ManagedObject*>, kEntityCount> byRow_;
  bool processingIsScheduled_ = false;
  std::vector<std::weak_ptr<QLSnippet>> followUps_;  // of this turn
  Observers<const ChangeSet&> didChange_;
  LifeToken life_;
};

}  // namespace quorlo
