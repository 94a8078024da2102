#include "store/sqlite/record_reader.h"

#include "store/context/managed_object_context.h"
#include "store/context/store_access.h"
#include "store/records/ql_app.h"
#include "store/records/ql_snippet.h"
#include "store/sqlite/sqlite_database.h"
#include "store/sqlite/stored_attributes.h"
#include "text/rich_text/rich_text_archive.h"

#include <algorithm>
#include <set>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace quorlo {
namespace {

std::string selectAll(Entity entity) {
  std::string sql = "SELECT row";
  for (const auto& each : storedAttributes(entity)) sql += ", " + std::string(each.property->name);
  return sql + " FROM " + std::string(entityName(entity));
}

Status loadEntity(SqliteDatabase& database, Entity entity, StoreAccess& access) {
  const auto name = std::string(entityName(entity));
  const auto count = database.integer("SELECT count(*) FROM " + name);
  if (!count) return count.error();
  access.expect(entity, static_cast<std::size_t>(count.value()));

  auto rows = database.prepare(selectAll(entity) + " ORDER BY row");
  const auto attributes = storedAttributes(entity);
  std::int64_t last = 0;
  for (;;) {
    const auto row = rows.step();
    if (!row) return row.error();
    if (!row.value()) return {};
    const auto number = rows.integer(0);
    // SQLite takes a page of zeros for rows without a number.
    if (number <= last) return database.damage("its rows in " + name + " are out of order.");
    last = number;
    auto& record = access.add(entity, number);
    int column = 0;
    for (const auto& each : attributes) each.take(record, rows, ++column, access);
  }
}

Status loadRelationship(SqliteDatabase& database, Entity owner, const StoredRelationship& relationship,
                        const StoreAccess& access) {
  auto pairs = database.prepare("SELECT " + std::string(relationship.owner) + ", app FROM " +
                                std::string(relationship.table));
  for (;;) {
    const auto pair = pairs.step();
    if (!pair) return pair.error();
    if (!pair.value()) return {};
    auto* const record = access.record(owner, pairs.integer(0));
    auto* const app = access.record(Entity::app, pairs.integer(1));
    if (record != nullptr && app != nullptr) relationship.add(*record, static_cast<QLApp&>(*app));
  }
}

Status loadWhichTextsAreRich(SqliteDatabase& database, const StoreAccess& access) {
  auto rows = database.prepare("SELECT snippet FROM SnippetText");
  for (;;) {
    const auto row = rows.step();
    if (!row) return row.error();
    if (!row.value()) return {};
    if (auto* snippet = access.record(Entity::snippet, rows.integer(0))) {
      StoreAccess::setRichTextIsInStore(static_cast<QLSnippet&>(*snippet), true);
    }
  }
}

Status loadUses(SqliteDatabase& database, const StoreAccess& access) {
  auto rows = database.prepare("SELECT snippet, useCount FROM SnippetUse");
  for (;;) {
    const auto row = rows.step();
    if (!row) return row.error();
    if (!row.value()) return {};
    if (auto* snippet = access.record(Entity::snippet, rows.integer(0))) {
      StoreAccess::setUseCount(static_cast<QLSnippet&>(*snippet), rows.integer(1));
    }
  }
}

// Brings records up to what the file holds.
class Refresh {
 public:
  Refresh(SqliteDatabase& database, StoreAccess& access) : database_(database), access_(access) {}

  Status run(std::span<const HistoryChange> changes);

 private:
  Status record(const HistoryChange& change);
  Status take(const HistoryChange& change, const SqliteStatement& rows);
  Status uses(QLSnippet& snippet);
  Status richText(QLSnippet& snippet);
  Status relationship(ManagedObject& owner, const StoredRelationship& relationship);
  Status makeSureOf(Entity entity, std::int64_t row);
  Status referrers(const ManagedObject& storedAgain);

  SqliteDatabase& database_;
  StoreAccess& access_;
};

// What is gone comes first: a folder that stays because of its unsaved changes keeps its snippets.
Status Refresh::run(std::span<const HistoryChange> changes) {
  for (const bool isDeletion : {true, false}) {
    for (const auto entity : kReferencedFirst) {
      for (const auto& each : changes) {
        if (each.entity != entity || (each.kind == HistoryChange::Kind::deleted) != isDeletion) continue;
        if (auto status = record(each); !status) return status;
      }
    }
  }
  return {};
}

Status Refresh::record(const HistoryChange& change) {
  auto* const known = access_.record(change.entity, change.row);
  if (known != nullptr && access_.isNewToStore(*known)) return {};
  if (access_.isDeletedHere(change.entity, change.row)) return {};

  auto rows = database_.prepare(selectAll(change.entity) + " WHERE row = ?");
  const auto row = rows.bind(1, change.row).step();
  if (!row) return row.error();
  if (row.value()) return take(change, rows);
  if (known != nullptr) access_.remove(*known);
  return {};
}

// `rows` stands on the record's row.
Status Refresh::take(const HistoryChange& change, const SqliteStatement& rows) {
  auto* const known = access_.record(change.entity, change.row);
  auto& record = known != nullptr ? *known : access_.add(change.entity, change.row);
  auto* const snippet = change.entity == Entity::snippet ? static_cast<QLSnippet*>(&record) : nullptr;
  bool mayHaveOtherText =
      known == nullptr || change.kind != HistoryChange::Kind::updated ||
      std::ranges::find(change.changedProperties, QLSnippet::kText.name) != change.changedProperties.end();
  int column = 0;
  for (const auto& each : storedAttributes(change.entity)) {
    ++column;
    if (each.unsaved == nullptr && isUnsaved(record, *each.property)) continue;
    if (each.property == &QLSnippet::kCategory && !rows.isNull(column)) {
      if (auto status = makeSureOf(Entity::category, rows.integer(column)); !status) return status;
    }
    if (each.property == &QLSnippet::kPlainText && snippet->plainText() != rows.text16(column)) {
      mayHaveOtherText = true;
    }
    each.take(record, rows, column, access_);
  }
  if (snippet != nullptr) {
    if (auto status = uses(*snippet); !status) return status;
  }
  if (snippet != nullptr && mayHaveOtherText && !isUnsaved(record, QLSnippet::kText)) {
    if (auto status = richText(*snippet); !status) return status;
  }
  for (const auto& each : storedRelationships(change.entity)) {
    if (isUnsaved(record, *each.property)) continue;
    if (auto status = relationship(record, each); !status) return status;
  }
  return known != nullptr && change.kind != HistoryChange::Kind::updated ? referrers(record) : Status();
}

// The record was deleted and stored again, and what led to it was cut in the store.
Status Refresh::referrers(const ManagedObject& storedAgain) {
  for (const auto* each : StoreAccess::referrers(storedAgain)) {
    auto status =
        record({.entity = each->entity(), .row = each->rowNumber(), .kind = HistoryChange::Kind::updated});
    if (!status) return status;
  }
  return {};
}

Status Refresh::uses(QLSnippet& snippet) {
  auto uses = database_.prepare("SELECT useCount FROM SnippetUse WHERE snippet = ?");
  const auto row = uses.bind(1, snippet.rowNumber()).step();
  if (!row) return row.error();
  StoreAccess::setUseCount(snippet, row.value() ? uses.integer(0) : 0);
  return {};
}

Status Refresh::richText(QLSnippet& snippet) {
  auto isRich = database_.prepare("SELECT EXISTS(SELECT 1 FROM SnippetText WHERE snippet = ?)");
  const auto row = isRich.bind(1, snippet.rowNumber()).step();
  if (!row) return row.error();
  StoreAccess::setRichTextIsInStore(snippet, isRich.integer(0) != 0);
  return {};
}

Status Refresh::relationship(ManagedObject& owner, const StoredRelationship& relationship) {
  auto apps = database_.prepare("SELECT app FROM " + std::string(relationship.table) + " WHERE " +
                                std::string(relationship.owner) + " = ?");
  apps.bind(1, owner.rowNumber());
  std::set<QLApp*> stored;
  for (;;) {
    const auto row = apps.step();
    if (!row) return row.error();
    if (!row.value()) break;
    if (auto status = makeSureOf(Entity::app, apps.integer(0)); !status) return status;
    if (auto* app = access_.record(Entity::app, apps.integer(0))) stored.insert(static_cast<QLApp*>(app));
  }
  const auto& now = relationship.apps(owner);
  const std::vector<QLApp*> before(now.begin(), now.end());
  for (auto* each : before) {
    if (!stored.contains(each)) relationship.remove(owner, *each);
  }
  for (auto* each : stored) relationship.add(owner, *each);
  return {};
}

// What a record refers to may have been saved after the changes that are being taken over.
Status Refresh::makeSureOf(Entity entity, std::int64_t row) {
  if (access_.record(entity, row) != nullptr) return {};
  return record({.entity = entity, .row = row, .kind = HistoryChange::Kind::inserted});
}

}  // namespace

Status loadRecords(SqliteDatabase& database, ManagedObjectContext& context) {
  StoreAccess access(context, StoreAccess::Purpose::load);
  for (const auto entity : kReferencedFirst) {
    if (auto status = loadEntity(database, entity, access); !status) return status;
  }
  for (const auto entity : kReferencedFirst) {
    for (const auto& each : storedRelationships(entity)) {
      if (auto status = loadRelationship(database, entity, each, access); !status) return status;
    }
  }
  if (auto status = loadUses(database, access); !status) return status;
  return loadWhichTextsAreRich(database, access);
}

// The access ends after the transaction, so that observers may save.
Status refreshRecords(SqliteDatabase& database, ManagedObjectContext& context,
                      std::span<const HistoryChange> changes) {
  StoreAccess access(context, StoreAccess::Purpose::refresh);
  const auto transaction = SqliteTransaction::begin(database, SqliteTransaction::Kind::read);
  if (!transaction) return transaction.error();
  return Refresh(database, access).run(changes);
}

// The records of a row that both files have become those of the file.
Status reloadRecords(SqliteDatabase& database, ManagedObjectContext& context) {
  std::vector<HistoryChange> changes;
  for (const auto entity : kReferencedFirst) {
    std::set<std::int64_t> stored;
    {
      auto rows = database.prepare("SELECT row FROM " + std::string(entityName(entity)));
      for (;;) {
        const auto row = rows.step();
        if (!row) return row.error();
        if (!row.value()) break;
        stored.insert(rows.integer(0));
      }
    }
    for (const auto row : stored) {
      changes.push_back({.entity = entity,
                         .row = row,
                         .kind = HistoryChange::Kind::updated,
                         .changedProperties = {std::string(QLSnippet::kText.name)}});
    }
    for (const auto row : StoreAccess::rows(context, entity)) {
      if (!stored.contains(row)) {
        changes.push_back({.entity = entity, .row = row, .kind = HistoryChange::Kind::deleted});
      }
    }
  }
  return refreshRecords(database, context, changes);
}

Result<std::optional<AttributedString>> richTextOf(SqliteDatabase& database, std::int64_t snippetRow) {
  auto texts = database.prepare("SELECT text FROM SnippetText WHERE snippet = ?");
  const auto row = texts.bind(1, snippetRow).step();
  if (!row) return row.error();
  if (!row.value()) return std::optional<AttributedString>();
  auto text = unarchive(texts.blob(0));
  if (!text) return text.error();
  return std::optional(std::move(text).value());
}

}  // namespace quorlo
