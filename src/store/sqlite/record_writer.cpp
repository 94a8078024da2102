#include "store/sqlite/record_writer.h"

#include "store/history/history_transaction.h"
#include "store/managed_object.h"
#include "store/ql_app.h"
#include "store/ql_category.h"
#include "store/ql_snippet.h"
#include "store/sqlite/sqlite_database.h"
#include "store/sqlite/stored_attributes.h"
#include "store/store_access.h"
#include "text/rich_text_archive.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <map>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace quorlo {
namespace {

// Folders and applications before the snippets that refer to them.
constexpr std::array kOrder{Entity::category, Entity::app, Entity::user, Entity::snippet};

// One save on its way into the file.
class Save {
 public:
  explicit Save(SqliteDatabase& database) : database_(database) {}

  Status run(const ChangeSet& changes, const Writer& writer, Date now);

  // Tells the records their rows, once all is on the disk.
  void tellRecords(const ChangeSet& changes) const;

 private:
  using Records = std::vector<std::shared_ptr<ManagedObject>>;

  Status begin(const Writer& writer, Date now);
  Status insert(const ManagedObject& record, std::int64_t row);
  Status update(const ManagedObject& record);
  Status remove(const ManagedObject& record);
  Status writeText(const QLSnippet& snippet, std::int64_t row);
  Status writeRelationship(const ManagedObject& owner, const StoredRelationship& relationship);
  Status note(const ManagedObject& record, HistoryChange::Kind kind, const std::string& properties);

  void bind(SqliteStatement& statement, int parameter, const Property& property,
            const ManagedObject& record) const;
  std::int64_t rowOf(const ManagedObject& record) const;

  SqliteDatabase& database_;
  std::int64_t transactionNumber_ = 0;
  std::map<const ManagedObject*, std::int64_t> newRows_;
};

// A folder that others have deleted meanwhile counts as none.
std::string placeholder(const Property& property) {
  return &property == &QLSnippet::kCategory ? "(SELECT row FROM Category WHERE row = ?)" : "?";
}

std::string uuidOf(const ManagedObject& record) {
  if (record.entity() == Entity::snippet) return static_cast<const QLSnippet&>(record).uuid();
  if (record.entity() == Entity::category) return static_cast<const QLCategory&>(record).uuid();
  return {};
}

Status Save::run(const ChangeSet& changes, const Writer& writer, Date now) {
  if (auto status = begin(writer, now); !status) return status;
  for (const auto entity : kOrder) {
    for (const auto& each : changes.inserted) {
      if (each->entity() != entity) continue;
      if (auto status = insert(*each, 0); !status) return status;
    }
  }
  for (const auto entity : kOrder) {
    for (const auto& each : changes.updated) {
      if (each->entity() != entity) continue;
      if (auto status = update(*each); !status) return status;
    }
  }
  for (const auto& each : changes.deleted) {
    if (auto status = remove(*each); !status) return status;
  }
  return {};
}

// No transaction is as old as the one before it, whatever the clock does.
Status Save::begin(const Writer& writer, Date now) {
  using std::chrono::microseconds;
  const auto newest = database_.integer("SELECT coalesce(max(timestamp), 0) FROM HistoryTransaction");
  if (!newest) return newest.error();
  const auto clock = std::chrono::floor<microseconds>(now.time_since_epoch()).count();
  auto transaction =
      database_.prepare("INSERT INTO HistoryTransaction(timestamp, author, contextName) VALUES(?, ?, ?)");
  const auto status = transaction.bind(1, std::max<std::int64_t>(clock, newest.value() + 1))
                          .bind(2, std::string_view(writer.author))
                          .bind(3, std::string_view(writer.contextName))
                          .run();
  transactionNumber_ = database_.lastInsertRowNumber();
  return status;
}

// In a row of the file's choice when `row` is 0.
Status Save::insert(const ManagedObject& record, std::int64_t row) {
  const auto attributes = storedAttributes(record.entity());
  std::string columns = "row";
  std::string values = "?";
  for (const auto& each : attributes) {
    columns += ", " + std::string(each.property->name);
    values += ", " + placeholder(*each.property);
  }
  auto statement = database_.prepare("INSERT INTO " + std::string(entityName(record.entity())) + "(" +
                                     columns + ") VALUES(" + values + ")");
  row == 0 ? statement.bind(1, nullptr) : statement.bind(1, row);
  int parameter = 1;
  for (const auto& each : attributes) bind(statement, ++parameter, *each.property, record);
  if (auto status = statement.run(); !status) return status;

  newRows_[&record] = database_.lastInsertRowNumber();
  if (record.entity() == Entity::snippet) {
    const auto& snippet = static_cast<const QLSnippet&>(record);
    if (StoreAccess::loadedRichText(snippet) != nullptr) {
      if (auto status = writeText(snippet, rowOf(record)); !status) return status;
    }
  }
  for (const auto& each : storedRelationships(record.entity())) {
    if (each.apps(record).empty()) continue;
    if (auto status = writeRelationship(record, each); !status) return status;
  }
  return note(record, HistoryChange::Kind::inserted, {});
}

Status Save::update(const ManagedObject& record) {
  const auto& changed = record.changedProperties();
  const auto isChanged = [&](const Property* each) {
    return std::ranges::find(changed, each) != changed.end();
  };
  std::string assignments;
  std::string names;
  std::vector<const Property*> columns;
  for (const auto& each : storedAttributes(record.entity())) {
    if (!isChanged(each.property)) continue;
    assignments += (columns.empty() ? "" : ", ") + std::string(each.property->name) + " = " +
                   placeholder(*each.property);
    columns.push_back(each.property);
  }
  // What a relationship's other side has changed is no property that is stored here.
  const auto noteName = [&](const Property& property) {
    names += (names.empty() ? "" : ",") + std::string(property.name);
  };
  for (const auto* each : columns) noteName(*each);
  const bool hasOtherText = record.entity() == Entity::snippet && isChanged(&QLSnippet::kText);
  if (hasOtherText) noteName(QLSnippet::kText);
  for (const auto& each : storedRelationships(record.entity())) {
    if (isChanged(each.property)) noteName(*each.property);
  }
  if (names.empty()) return {};

  const auto row = record.rowNumber();
  if (columns.empty()) assignments = "row = row";
  auto statement = database_.prepare("UPDATE " + std::string(entityName(record.entity())) + " SET " +
                                     assignments + " WHERE row = ?");
  int parameter = 0;
  for (const auto* each : columns) bind(statement, ++parameter, *each, record);
  if (auto status = statement.bind(++parameter, row).run(); !status) return status;
  if (database_.changedRowCount() == 0) return insert(record, row);

  if (hasOtherText) {
    if (auto status = writeText(static_cast<const QLSnippet&>(record), row); !status) return status;
  }
  for (const auto& each : storedRelationships(record.entity())) {
    if (!isChanged(each.property)) continue;
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

Status Save::writeText(const QLSnippet& snippet, std::int64_t row) {
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
  return database_
      .prepare(
          "INSERT INTO HistoryChange(transactionNumber, entity, row, uuid, kind, changedProperties) "
          "VALUES(?, ?, ?, ?, ?, ?)")
      .bind(1, transactionNumber_)
      .bind(2, entityName(record.entity()))
      .bind(3, rowOf(record))
      .bind(4, std::string_view(uuidOf(record)))
      .bind(5, static_cast<int>(kind))
      .bind(6, std::string_view(properties))
      .run();
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

Status writeRecords(SqliteDatabase& database, const ChangeSet& changes, const Writer& writer, Date now) {
  auto transaction = SqliteTransaction::begin(database, SqliteTransaction::Kind::write);
  if (!transaction) return transaction.error();
  Save save(database);
  if (auto status = save.run(changes, writer, now); !status) return status;
  if (auto status = transaction.value().commit(); !status) return status;
  save.tellRecords(changes);
  return {};
}

}  // namespace quorlo
