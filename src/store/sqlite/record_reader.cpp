#include "store/sqlite/record_reader.h"

#include "store/managed_object_context.h"
#include "store/ql_app.h"
#include "store/ql_snippet.h"
#include "store/sqlite/sqlite_database.h"
#include "store/sqlite/stored_attributes.h"
#include "store/store_access.h"
#include "text/rich_text_archive.h"

#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <vector>

namespace quorlo {
namespace {

// Folders and applications before the snippets that refer to them.
constexpr std::array kOrder{Entity::category, Entity::app, Entity::user, Entity::snippet};

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
  for (;;) {
    const auto row = rows.step();
    if (!row) return row.error();
    if (!row.value()) return {};
    auto& record = access.add(entity, rows.integer(0));
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

bool isChangedHere(const ManagedObject& record, const Property& property) {
  const auto& changed = record.changedProperties();
  const auto has = [&](const Property& each) { return std::ranges::find(changed, &each) != changed.end(); };
  // The plain text and the number of pictures are parts of the text.
  if (&property == &QLSnippet::kPlainText || &property == &QLSnippet::kNumberOFImagesString) {
    return has(QLSnippet::kText) || has(property);
  }
  return has(property);
}

Status refreshRichText(SqliteDatabase& database, QLSnippet& snippet) {
  if (isChangedHere(snippet, QLSnippet::kText)) return {};
  auto isRich = database.prepare("SELECT EXISTS(SELECT 1 FROM SnippetText WHERE snippet = ?)");
  const auto row = isRich.bind(1, snippet.rowNumber()).step();
  if (!row) return row.error();
  StoreAccess::setRichTextIsInStore(snippet, isRich.integer(0) != 0);
  return {};
}

Status refreshRelationship(SqliteDatabase& database, ManagedObject& owner,
                           const StoredRelationship& relationship, const StoreAccess& access) {
  if (isChangedHere(owner, *relationship.property)) return {};
  auto apps = database.prepare("SELECT app FROM " + std::string(relationship.table) + " WHERE " +
                               std::string(relationship.owner) + " = ?");
  apps.bind(1, owner.rowNumber());
  std::set<QLApp*> stored;
  for (;;) {
    const auto row = apps.step();
    if (!row) return row.error();
    if (!row.value()) break;
    if (auto* app = access.record(Entity::app, apps.integer(0))) stored.insert(static_cast<QLApp*>(app));
  }
  const auto& now = relationship.apps(owner);
  const std::vector<QLApp*> before(now.begin(), now.end());
  for (auto* each : before) {
    if (!stored.contains(each)) relationship.remove(owner, *each);
  }
  for (auto* each : stored) relationship.add(owner, *each);
  return {};
}

// `rows` stands on the record's row.
Status take(SqliteDatabase& database, const SqliteStatement& rows, const HistoryChange& change,
            StoreAccess& access) {
  auto* const known = access.record(change.entity, change.row);
  auto& record = known != nullptr ? *known : access.add(change.entity, change.row);
  int column = 0;
  for (const auto& each : storedAttributes(change.entity)) {
    ++column;
    if (!isChangedHere(record, *each.property)) each.take(record, rows, column, access);
  }
  const bool mayHaveOtherText =
      known == nullptr || change.kind != HistoryChange::Kind::updated ||
      std::ranges::find(change.changedProperties, QLSnippet::kText.name) != change.changedProperties.end();
  if (change.entity == Entity::snippet && mayHaveOtherText) {
    if (auto status = refreshRichText(database, static_cast<QLSnippet&>(record)); !status) return status;
  }
  for (const auto& each : storedRelationships(change.entity)) {
    if (auto status = refreshRelationship(database, record, each, access); !status) return status;
  }
  return {};
}

Status refreshRecord(SqliteDatabase& database, ManagedObjectContext& context, const HistoryChange& change,
                     StoreAccess& access) {
  if (access.isDeletedHere(change.entity, change.row)) return {};
  auto rows = database.prepare(selectAll(change.entity) + " WHERE row = ?");
  const auto row = rows.bind(1, change.row).step();
  if (!row) return row.error();
  if (row.value()) return take(database, rows, change, access);
  auto* const gone = access.record(change.entity, change.row);
  if (gone != nullptr && gone->changedProperties().empty()) context.deleteObject(*gone);
  return {};
}

}  // namespace

Status loadRecords(SqliteDatabase& database, ManagedObjectContext& context) {
  const auto transaction = SqliteTransaction::begin(database, SqliteTransaction::Kind::read);
  if (!transaction) return transaction.error();
  StoreAccess access(context, StoreAccess::Purpose::load);
  for (const auto entity : kOrder) {
    if (auto status = loadEntity(database, entity, access); !status) return status;
  }
  for (const auto entity : kOrder) {
    for (const auto& each : storedRelationships(entity)) {
      if (auto status = loadRelationship(database, entity, each, access); !status) return status;
    }
  }
  return loadWhichTextsAreRich(database, access);
}

Status refreshRecords(SqliteDatabase& database, ManagedObjectContext& context,
                      std::span<const HistoryChange> changes) {
  const auto transaction = SqliteTransaction::begin(database, SqliteTransaction::Kind::read);
  if (!transaction) return transaction.error();
  StoreAccess access(context, StoreAccess::Purpose::refresh);
  for (const auto entity : kOrder) {
    for (const auto& each : changes) {
      if (each.entity != entity) continue;
      if (auto status = refreshRecord(database, context, each, access); !status) return status;
    }
  }
  return {};
}

Result<AttributedString> richTextOf(SqliteDatabase& database, std::int64_t snippetRow) {
  auto texts = database.prepare("SELECT text FROM SnippetText WHERE snippet = ?");
  const auto row = texts.bind(1, snippetRow).step();
  if (!row) return row.error();
  if (!row.value()) return Error{"The library's file does not have it any more."};
  return unarchive(texts.blob(0));
}

}  // namespace quorlo
