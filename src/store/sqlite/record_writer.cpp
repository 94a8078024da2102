#include "store/sqlite/record_writer.h"

#include "store/context/change_log.h"
#include "store/context/managed_object.h"
#include "store/context/store_access.h"
#include "store/history/history_transaction.h"
#include "store/records/ql_app.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/sqlite/history_writer.h"
#include "store/sqlite/sqlite_database.h"
#include "store/sqlite/stored_attributes.h"
#include "store/uuid.h"
#include "text/rich_text/rich_text_archive.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

namespace quorlo {
namespace {

constexpr std::size_t kRecordsPerStep = 1000;

using Records = std::vector<std::shared_ptr<ManagedObject>>;

// One save on its way into the file.
class Save {
 public:
  Save(SqliteDatabase& database, const Writer& writer, Date now, const SaveProgress& progress)
      : database_(database), history_(database, writer, now), progress_(progress) {}

  Status run(const ChangeSet& changes);

  // The updated records that others have deleted.
  const Records& lost() const { return lost_; }

  // Tells the records their rows, once all is on the disk.
  void tellRecords(const ChangeSet& changes) const;

 private:
  Status insert(ManagedObject& record);
  Status insertRow(const ManagedObject& record);
  Status makeRoomFor(ManagedObject& record);
  Status update(const std::shared_ptr<ManagedObject>& record);
  Result<bool> updateRow(const ManagedObject& record, const std::string& assignments,
                         const std::vector<ValueView>& values);
  Result<bool> isStored(const ManagedObject& record);
  Status remove(const ManagedObject& record);
  Status writeUses(const QLSnippet& snippet);
  Status writeText(const QLSnippet& snippet);
  Status writeRelationship(const ManagedObject& owner, const StoredRelationship& relationship);
  Status note(const ManagedObject& record, HistoryChange::Kind kind, const std::string& properties);
  Status didWrite();

  const std::string& insertStatement(Entity entity);
  void bind(SqliteStatement& statement, int parameter, const ValueView& value) const;
  std::int64_t rowOf(const ManagedObject& record) const;

  SqliteDatabase& database_;
  HistoryWriter history_;
  const SaveProgress& progress_;
  std::size_t written_ = 0;
  std::size_t toWrite_ = 0;
  std::array<std::string, kEntityCount> insertStatements_;
  std::unordered_map<const ManagedObject*, std::int64_t> newRows_;
  Records lost_;
};

std::string placeholder(const Property& property) {
  // A folder that others have deleted meanwhile counts as none.
  if (&property == &QLSnippet::kCategory) return "(SELECT row FROM Category WHERE row = ?)";
  if (&property == &QLApp::kBundleID) return "coalesce(?, '')";
  return "?";
}

// What the history calls the record: an application is known by its contents.
std::string identityOf(const ManagedObject& record) {
  if (record.entity() == Entity::snippet) return static_cast<const QLSnippet&>(record).uuid();
  if (record.entity() == Entity::category) return static_cast<const QLCategory&>(record).uuid();
  if (record.entity() != Entity::app) return {};
  const auto& app = static_cast<const QLApp&>(record);
  return std::to_string(app.type()) + ":" + app.bundleID();
}

void setUuid(ManagedObject& record, std::string uuid) {
  if (record.entity() == Entity::snippet) static_cast<QLSnippet&>(record).setUuid(std::move(uuid));
  if (record.entity() == Entity::category) static_cast<QLCategory&>(record).setUuid(std::move(uuid));
}

Status Save::run(const ChangeSet& changes) {
  toWrite_ = changes.inserted.size() + changes.updated.size() + changes.deleted.size();
  newRows_.reserve(changes.inserted.size());
  // First, as what is new may have the uuid of what goes.
  for (const auto& each : changes.deleted) {
    if (auto status = remove(*each); !status) return status;
    if (auto status = didWrite(); !status) return status;
  }
  for (const auto entity : kReferencedFirst) {
    for (const auto& each : changes.inserted) {
      if (each->entity() != entity) continue;
      if (auto status = insert(*each); !status) return status;
      if (auto status = didWrite(); !status) return status;
    }
  }
  for (const auto& each : changes.updated) {
    if (auto status = update(each); !status) return status;
    if (auto status = didWrite(); !status) return status;
  }
  return {};
}

Status Save::didWrite() {
  if (++written_ % kRecordsPerStep != 0 && written_ != toWrite_) return {};
  if (!progress_ || progress_(static_cast<double>(written_) / static_cast<double>(toWrite_))) return {};
  return Error{"The save was called off."};
}

// One that has been stored before and was lost goes back to its row, even when others have put it back there.
const std::string& Save::insertStatement(Entity entity) {
  auto& statement = insertStatements_[static_cast<std::size_t>(entity)];
  if (!statement.empty()) return statement;
  std::string columns = "row";
  std::string values = "?";
  std::string updates;
  for (const auto& each : storedAttributes(entity)) {
    const std::string name(each.property->name);
    columns += ", " + name;
    values += ", " + placeholder(*each.property);
    updates += (updates.empty() ? "" : ", ") + name + " = excluded." + name;
  }
  statement = "INSERT INTO " + std::string(entityName(entity)) + "(" + columns + ") VALUES(" + values +
              ") ON CONFLICT(row) DO UPDATE SET " + updates;
  return statement;
}

Status Save::insertRow(const ManagedObject& record) {
  auto statement = database_.prepare(insertStatement(record.entity()));
  if (const auto row = rowOf(record); row != 0) statement.bind(1, row);
  int parameter = 1;
  for (const auto& each : storedAttributes(record.entity())) {
    bind(statement, ++parameter, each.property->read(record));
  }
  auto status = statement.run();
  if (status && rowOf(record) == 0) newRows_[&record] = database_.lastInsertRowNumber();
  return status;
}

// A uuid names one record. Another program may have stored this one under it meanwhile: then its row is this
// record's from now on. A second record of the same uuid in this context is another one, and gets a uuid of
// its own.
Status Save::makeRoomFor(ManagedObject& record) {
  auto holder =
      database_.prepare("SELECT row FROM " + std::string(entityName(record.entity())) + " WHERE uuid = ?");
  const auto found = holder.bind(1, std::string_view(identityOf(record))).step();
  if (!found) return found.error();
  const auto row = holder.integer(0);
  const bool isOfThisSave =
      std::ranges::any_of(newRows_, [row](const auto& each) { return each.second == row; });
  if (isOfThisSave || record.managedObjectContext()->record(record.entity(), row) != nullptr) {
    setUuid(record, randomUuid());
  } else {
    newRows_[&record] = row;
  }
  return {};
}

Status Save::insert(ManagedObject& record) {
  bool isKnown = record.rowNumber() != 0;
  if (hasUuid(record.entity()) && identityOf(record).empty()) setUuid(record, randomUuid());
  auto status = insertRow(record);
  if (!status && hasUuid(record.entity()) && database_.failedAsNotUnique()) {
    if (status = makeRoomFor(record); !status) return status;
    isKnown = true;
    status = insertRow(record);
  }
  if (!status) return status;

  if (record.entity() == Entity::snippet) {
    const auto& snippet = static_cast<const QLSnippet&>(record);
    if (StoreAccess::unsavedUses(snippet) != 0) {
      if (status = writeUses(snippet); !status) return status;
    }
    if (isKnown || StoreAccess::loadedRichText(snippet) != nullptr) {
      if (status = writeText(snippet); !status) return status;
    }
  }
  for (const auto& each : storedRelationships(record.entity())) {
    if (!isKnown && each.apps(record).empty()) continue;
    if (status = writeRelationship(record, each); !status) return status;
  }
  return note(record, HistoryChange::Kind::inserted, {});
}

// False when others have deleted it.
Result<bool> Save::updateRow(const ManagedObject& record, const std::string& assignments,
                             const std::vector<ValueView>& values) {
  auto statement = database_.prepare("UPDATE " + std::string(entityName(record.entity())) + " SET " +
                                     assignments + " WHERE row = ?");
  int parameter = 0;
  for (const auto& each : values) bind(statement, ++parameter, each);
  if (auto status = statement.bind(++parameter, record.rowNumber()).run(); !status) return status.error();
  return database_.changedRowCount() != 0;
}

Result<bool> Save::isStored(const ManagedObject& record) {
  auto statement =
      database_.prepare("SELECT 1 FROM " + std::string(entityName(record.entity())) + " WHERE row = ?");
  return statement.bind(1, record.rowNumber()).step();
}

Status Save::update(const std::shared_ptr<ManagedObject>& updated) {
  const auto& record = *updated;
  std::string assignments;
  std::string names;
  const auto addName = [&names](const Property& property) {
    names += (names.empty() ? "" : ",") + std::string(property.name);
  };
  std::vector<ValueView> values;
  for (const auto& each : storedAttributes(record.entity())) {
    if (!isUnsaved(record, *each.property)) continue;
    const std::string name(each.property->name);
    assignments += (values.empty() ? "" : ", ") + name + " = " +
                   (each.unsaved != nullptr ? name + " + " : "") + placeholder(*each.property);
    values.push_back(each.unsaved != nullptr ? each.unsaved(record) : each.property->read(record));
    addName(*each.property);
  }
  const auto isThere = values.empty() ? isStored(record) : updateRow(record, assignments, values);
  if (!isThere) return isThere.error();
  if (!isThere.value()) {
    lost_.push_back(updated);
    return {};
  }
  if (isUnsaved(record, QLSnippet::kUseCount)) {
    addName(QLSnippet::kUseCount);
    if (auto status = writeUses(static_cast<const QLSnippet&>(record)); !status) return status;
  }
  if (isUnsaved(record, QLSnippet::kText)) {
    addName(QLSnippet::kText);
    if (auto status = writeText(static_cast<const QLSnippet&>(record)); !status) return status;
  }
  for (const auto& each : storedRelationships(record.entity())) {
    if (!isUnsaved(record, *each.property)) continue;
    addName(*each.property);
    if (auto status = writeRelationship(record, each); !status) return status;
  }
  return note(record, HistoryChange::Kind::updated, names);
}

Status Save::remove(const ManagedObject& record) {
  auto statement =
      database_.prepare("DELETE FROM " + std::string(entityName(record.entity())) + " WHERE row = ?");
  if (auto status = statement.bind(1, record.rowNumber()).run(); !status) return status;
  if (database_.changedRowCount() == 0) return {};  // others were quicker
  return note(record, HistoryChange::Kind::deleted, {});
}

// Added to what others have counted.
Status Save::writeUses(const QLSnippet& snippet) {
  return database_
      .prepare(
          "INSERT INTO SnippetUse(snippet, useCount) VALUES(?, ?) "
          "ON CONFLICT(snippet) DO UPDATE SET useCount = useCount + excluded.useCount")
      .bind(1, rowOf(snippet))
      .bind(2, StoreAccess::unsavedUses(snippet))
      .run();
}

Status Save::writeText(const QLSnippet& snippet) {
  const auto row = rowOf(snippet);
  const auto* rich = StoreAccess::loadedRichText(snippet);
  if (rich == nullptr) {
    return database_.prepare("DELETE FROM SnippetText WHERE snippet = ?").bind(1, row).run();
  }
  const auto bytes = archive(*rich);
  return database_.prepare("INSERT OR REPLACE INTO SnippetText(snippet, text) VALUES(?, ?)")
      .bind(1, row)
      .bind(2, std::span<const std::uint8_t>(bytes))
      .run();
}

Status Save::writeRelationship(const ManagedObject& owner, const StoredRelationship& relationship) {
  const auto table = std::string(relationship.table);
  const auto column = std::string(relationship.owner);
  auto clear = database_.prepare("DELETE FROM " + table + " WHERE " + column + " = ?");
  if (auto status = clear.bind(1, rowOf(owner)).run(); !status) return status;
  // An application that others have deleted meanwhile is left out.
  auto add = database_.prepare("INSERT INTO " + table + "(" + column +
                               ", app) SELECT ?, row FROM App WHERE row = ?");
  for (const auto* each : relationship.apps(owner)) {
    if (auto status = add.bind(1, rowOf(owner)).bind(2, rowOf(*each)).run(); !status) return status;
  }
  return {};
}

Status Save::note(const ManagedObject& record, HistoryChange::Kind kind, const std::string& properties) {
  return history_.note(record.entity(), rowOf(record), identityOf(record), kind, properties);
}

void Save::bind(SqliteStatement& statement, int parameter, const ValueView& value) const {
  std::visit(
      [&](const auto& held) {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, std::monostate>) {
          statement.bind(parameter, nullptr);
        } else if constexpr (std::is_same_v<Held, const ManagedObject*>) {
          statement.bind(parameter, rowOf(*held));
        } else {
          statement.bind(parameter, held);
        }
      },
      value);
}

std::int64_t Save::rowOf(const ManagedObject& record) const {
  const auto found = newRows_.find(&record);
  return found == newRows_.end() ? record.rowNumber() : found->second;
}

void Save::tellRecords(const ChangeSet& changes) const {
  for (const auto* list : {&changes.inserted, &changes.updated}) {
    for (const auto& each : *list) StoreAccess::didSave(*each, rowOf(*each));
  }
}

}  // namespace

Result<Records> writeRecords(SqliteDatabase& database, SqliteTransaction transaction,
                             const ChangeSet& changes, const Writer& writer, Date now,
                             const SaveProgress& progress) {
  Save save(database, writer, now, progress);
  if (auto status = save.run(changes); !status) return status.error();
  if (!save.lost().empty()) return save.lost();
  if (auto status = transaction.commit(); !status) return status.error();
  save.tellRecords(changes);
  return Records();
}

}  // namespace quorlo
