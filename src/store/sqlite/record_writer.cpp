#include "store/sqlite/record_writer.h"

#include "store/context/change_log.h"
#include "store/context/managed_object.h"
#include "store/context/store_access.h"
#include "store/history/history_transaction.h"
#include "store/records/ql_app.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/sqlite/sqlite_database.h"
#include "store/sqlite/stored_attributes.h"
#include "text/rich_text/rich_text_archive.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>
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
      : database_(database), writer_(writer), now_(now), progress_(progress) {}

  Status run(const ChangeSet& changes);

  // The updated records that others have deleted.
  const Records& lost() const { return lost_; }

  // Tells the records their rows, once all is on the disk.
  void tellRecords(const ChangeSet& changes) const;

 private:
  Status insert(const ManagedObject& record);
  Status update(const std::shared_ptr<ManagedObject>& record);
  Status remove(const ManagedObject& record);
  Status writeText(const QLSnippet& snippet);
  Status writeRelationship(const ManagedObject& owner, const StoredRelationship& relationship);
  Status note(const ManagedObject& record, HistoryChange::Kind kind, const std::string& properties);
  Status beginHistory();
  Status didWrite();

  const std::string& insertStatement(Entity entity);
  void bind(SqliteStatement& statement, int parameter, const Property& property,
            const ManagedObject& record) const;
  std::int64_t rowOf(const ManagedObject& record) const;

  SqliteDatabase& database_;
  const Writer& writer_;
  const Date now_;
  const SaveProgress& progress_;
  std::size_t written_ = 0;
  std::size_t toWrite_ = 0;
  std::int64_t historyTransaction_ = 0;
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

std::string uuidOf(const ManagedObject& record) {
  if (record.entity() == Entity::snippet) return static_cast<const QLSnippet&>(record).uuid();
  if (record.entity() == Entity::category) return static_cast<const QLCategory&>(record).uuid();
  return {};
}

Status Save::run(const ChangeSet& changes) {
  toWrite_ = changes.inserted.size() + changes.updated.size() + changes.deleted.size();
  newRows_.reserve(changes.inserted.size());
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
  for (const auto& each : changes.deleted) {
    if (auto status = remove(*each); !status) return status;
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

Status Save::insert(const ManagedObject& record) {
  const bool isKnown = record.rowNumber() != 0;
  auto statement = database_.prepare(insertStatement(record.entity()));
  if (isKnown) statement.bind(1, record.rowNumber());
  int parameter = 1;
  for (const auto& each : storedAttributes(record.entity())) {
    bind(statement, ++parameter, *each.property, record);
  }
  if (auto status = statement.run(); !status) return status;
  if (!isKnown) newRows_[&record] = database_.lastInsertRowNumber();

  if (record.entity() == Entity::snippet) {
    const auto& snippet = static_cast<const QLSnippet&>(record);
    if (isKnown || StoreAccess::loadedRichText(snippet) != nullptr) {
      if (auto status = writeText(snippet); !status) return status;
    }
  }
  for (const auto& each : storedRelationships(record.entity())) {
    if (!isKnown && each.apps(record).empty()) continue;
    if (auto status = writeRelationship(record, each); !status) return status;
  }
  return note(record, HistoryChange::Kind::inserted, {});
}

Status Save::update(const std::shared_ptr<ManagedObject>& updated) {
  const auto& record = *updated;
  std::string assignments;
  std::string names;
  const auto addName = [&names](const Property& property) {
    names += (names.empty() ? "" : ",") + std::string(property.name);
  };
  std::vector<const Property*> columns;
  const auto attributes = storedAttributes(record.entity());
  for (const auto& each : attributes) {
    if (!isUnsaved(record, *each.property)) continue;
    assignments += (columns.empty() ? "" : ", ") + std::string(each.property->name) + " = " +
                   placeholder(*each.property);
    columns.push_back(each.property);
    addName(*each.property);
  }
  if (columns.empty()) {  // still tells whether the record is there
    const std::string any(attributes.front().property->name);
    assignments = any + " = " + any;
  }
  auto statement = database_.prepare("UPDATE " + std::string(entityName(record.entity())) + " SET " +
                                     assignments + " WHERE row = ?");
  int parameter = 0;
  for (const auto* each : columns) bind(statement, ++parameter, *each, record);
  if (auto status = statement.bind(++parameter, record.rowNumber()).run(); !status) return status;
  if (database_.changedRowCount() == 0) {
    lost_.push_back(updated);
    return {};
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
  if (historyTransaction_ == 0) {
    if (auto status = beginHistory(); !status) return status;
  }
  return database_
      .prepare(
          "INSERT INTO HistoryChange(transactionNumber, entity, row, uuid, kind, changedProperties) "
          "VALUES(?, ?, ?, ?, ?, ?)")
      .bind(1, historyTransaction_)
      .bind(2, entityName(record.entity()))
      .bind(3, rowOf(record))
      .bind(4, std::string_view(uuidOf(record)))
      .bind(5, static_cast<int>(kind))
      .bind(6, std::string_view(properties))
      .run();
}

// Later than the transaction before it, whatever the clock does.
Status Save::beginHistory() {
  using std::chrono::microseconds;
  const auto newest = database_.integer("SELECT coalesce(max(timestamp), 0) FROM HistoryTransaction");
  if (!newest) return newest.error();
  const auto clock = std::chrono::floor<microseconds>(now_.time_since_epoch()).count();
  auto status =
      database_.prepare("INSERT INTO HistoryTransaction(timestamp, author, contextName) VALUES(?, ?, ?)")
          .bind(1, std::max<std::int64_t>(clock, newest.value() + 1))
          .bind(2, std::string_view(writer_.author))
          .bind(3, std::string_view(writer_.contextName))
          .run();
  historyTransaction_ = database_.lastInsertRowNumber();
  return status;
}

void Save::bind(SqliteStatement& statement, int parameter, const Property& property,
                const ManagedObject& record) const {
  std::visit(
      [&](const auto& value) {
        using Held = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<Held, std::monostate>) {
          statement.bind(parameter, nullptr);
        } else if constexpr (std::is_same_v<Held, const ManagedObject*>) {
          statement.bind(parameter, rowOf(*value));
        } else {
          statement.bind(parameter, value);
        }
      },
      property.read(record));
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

Result<Records> writeRecords(SqliteDatabase& database, const ChangeSet& changes, const Writer& writer,
                             Date now, const SaveProgress& progress) {
  auto transaction = SqliteTransaction::begin(database, SqliteTransaction::Kind::write);
  if (!transaction) return transaction.error();
  Save save(database, writer, now, progress);
  if (auto status = save.run(changes); !status) return status.error();
  if (!save.lost().empty()) return save.lost();
  if (auto status = transaction.value().commit(); !status) return status.error();
  save.tellRecords(changes);
  return Records();
}

}  // namespace quorlo
