#include "store/sqlite/stored_attributes.h"

#include "store/context/store_access.h"
#include "store/records/ql_app.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/records/ql_user.h"
#include "store/sqlite/sqlite_statement.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

namespace quorlo {
namespace {

QLSnippet& snippet(ManagedObject& record) {
  return static_cast<QLSnippet&>(record);
}
QLCategory& category(ManagedObject& record) {
  return static_cast<QLCategory&>(record);
}
QLUser& user(ManagedObject& record) {
  return static_cast<QLUser&>(record);
}

using Row = const SqliteStatement&;
using Access = const StoreAccess&;

// A date that a record has never goes; NULL leaves it as it is.
template <class Record>
void takeCreationDate(ManagedObject& record, Row row, int column, Access) {
  if (const auto date = row.date(column)) static_cast<Record&>(record).setCreationDate(*date);
}
template <class Record>
void takeModifiedDate(ManagedObject& record, Row row, int column, Access) {
  if (const auto date = row.date(column)) static_cast<Record&>(record).setModifiedDate(*date);
}
template <class Record>
void takeUuid(ManagedObject& record, Row row, int column, Access) {
  static_cast<Record&>(record).setUuid(std::string(row.text(column)));
}

// The abbreviation comes last, when it is known whether the snippet is live.
constexpr StoredAttribute kSnippet[] = {
    {&QLSnippet::kUuid, takeUuid<QLSnippet>},
    {&QLSnippet::kCreationDate, takeCreationDate<QLSnippet>},
    {&QLSnippet::kModifiedDate, takeModifiedDate<QLSnippet>},
    {&QLSnippet::kDeletionDate, [](ManagedObject& record, Row row, int column,
                                   Access) { snippet(record).setDeletionDate(row.date(column)); }},
    {&QLSnippet::kTitle, [](ManagedObject& record, Row row, int column,
                            Access) { snippet(record).setTitle(row.text16(column)); }},
    {&QLSnippet::kTitleIsCustom, [](ManagedObject& record, Row row, int column,
                                    Access) { snippet(record).setTitleIsCustom(row.integer(column) != 0); }},
    {&QLSnippet::kFormatted, [](ManagedObject& record, Row row, int column,
                                Access) { snippet(record).setFormatted(row.integer(column)); }},
    {&QLSnippet::kPlainText, [](ManagedObject& record, Row row, int column,
                                Access) { StoreAccess::setPlainText(snippet(record), row.text16(column)); }},
    {&QLSnippet::kNumberOFImagesString,
     [](ManagedObject& record, Row row, int column, Access) {
       StoreAccess::setImageCount(snippet(record), static_cast<std::size_t>(row.integer(column)));
     }},
    {&QLSnippet::kCategory,
     [](ManagedObject& record, Row row, int column, Access access) {
       auto* const folder =
           row.isNull(column) ? nullptr : access.record(Entity::category, row.integer(column));
       snippet(record).setCategory(static_cast<QLCategory*>(folder));
     }},
    {&QLSnippet::kAbbreviation,
     [](ManagedObject& record, Row row, int column, Access) {
       if (!row.isNull(column) && row.text(column).empty()) {
         StoreAccess::setEmptyAbbreviation(snippet(record));
       } else {
         snippet(record).setAbbreviation(row.text16(column));
       }
     }},
};

constexpr StoredAttribute kCategory[] = {
    {&QLCategory::kUuid, takeUuid<QLCategory>},
    {&QLCategory::kCreationDate, takeCreationDate<QLCategory>},
    {&QLCategory::kModifiedDate, takeModifiedDate<QLCategory>},
    {&QLCategory::kTitle, [](ManagedObject& record, Row row, int column,
                             Access) { category(record).setTitle(row.text16(column)); }},
    {&QLCategory::kType, [](ManagedObject& record, Row row, int column,
                            Access) { category(record).setType(row.integer(column)); }},
    {&QLCategory::kSourceType, [](ManagedObject& record, Row row, int column,
                                  Access) { category(record).setSourceType(row.integer(column)); }},
    {&QLCategory::kSort, [](ManagedObject& record, Row row, int column,
                            Access) { category(record).setSort(row.integer(column)); }},
    {&QLCategory::kShortcutKeyCode,
     [](ManagedObject& record, Row row, int column, Access) {
       category(record).setShortcutKeyCode(row.optionalInteger(column));
     }},
    {&QLCategory::kShortcutModifierFlags,
     [](ManagedObject& record, Row row, int column, Access) {
       category(record).setShortcutModifierFlags(row.integer(column));
     }},
    {&QLCategory::kExpansionBehavior,
     [](ManagedObject& record, Row row, int column, Access) {
       category(record).setExpansionBehavior(row.integer(column));
     }},
};

constexpr StoredAttribute kApp[] = {
    {&QLApp::kBundleID,
     [](ManagedObject& record, Row row, int column, Access) {
       static_cast<QLApp&>(record).setBundleID(std::string(row.text(column)));
     }},
    {&QLApp::kType, [](ManagedObject& record, Row row, int column,
                       Access) { static_cast<QLApp&>(record).setType(row.integer(column)); }},
};

constexpr StoredAttribute kUser[] = {
    {&QLUser::kCreationDate, takeCreationDate<QLUser>},
    {&QLUser::kSavedChars,
     [](ManagedObject& record, Row row, int column, Access) {
       StoreAccess::setSavedChars(user(record), row.integer(column));
     },
     [](const ManagedObject& record) -> ValueView {
       return StoreAccess::unsavedSavedChars(static_cast<const QLUser&>(record));
     }},
    {&QLUser::kSavedMinutes,
     [](ManagedObject& record, Row row, int column, Access) {
       StoreAccess::setSavedMinutes(user(record), row.real(column));
     },
     [](const ManagedObject& record) -> ValueView {
       return StoreAccess::unsavedSavedMinutes(static_cast<const QLUser&>(record));
     }},
    {&QLUser::kWordsPerMinute,
     [](ManagedObject& record, Row row, int column, Access) {
       using Speed = std::numeric_limits<std::int16_t>;
       const auto speed = std::clamp<std::int64_t>(row.integer(column), Speed::min(), Speed::max());
       user(record).setWordsPerMinute(static_cast<std::int16_t>(speed));
     }},
};

constexpr StoredRelationship kSnippetApps[] = {
    {&QLSnippet::kAllowedApps, "SnippetAllowedApps", "snippet",
     [](const ManagedObject& owner) -> const RecordSet<QLApp>& {
       return static_cast<const QLSnippet&>(owner).allowedApps();
     },
     [](ManagedObject& owner, QLApp& app) { snippet(owner).addAllowedApp(app); },
     [](ManagedObject& owner, QLApp& app) { snippet(owner).removeAllowedApp(app); }},
    {&QLSnippet::kBlockedSnippets, "SnippetBlockedSnippets", "snippet",
     [](const ManagedObject& owner) -> const RecordSet<QLApp>& {
       return static_cast<const QLSnippet&>(owner).blockedSnippets();
     },
     [](ManagedObject& owner, QLApp& app) { snippet(owner).addBlockedSnippet(app); },
     [](ManagedObject& owner, QLApp& app) { snippet(owner).removeBlockedSnippet(app); }},
};

constexpr StoredRelationship kCategoryApps[] = {
    {&QLCategory::kAllowedApps, "CategoryAllowedApps", "category",
     [](const ManagedObject& owner) -> const RecordSet<QLApp>& {
       return static_cast<const QLCategory&>(owner).allowedApps();
     },
     [](ManagedObject& owner, QLApp& app) { category(owner).addAllowedApp(app); },
     [](ManagedObject& owner, QLApp& app) { category(owner).removeAllowedApp(app); }},
    {&QLCategory::kBlockedApps, "CategoryBlockedApps", "category",
     [](const ManagedObject& owner) -> const RecordSet<QLApp>& {
       return static_cast<const QLCategory&>(owner).blockedApps();
     },
     [](ManagedObject& owner, QLApp& app) { category(owner).addBlockedApp(app); },
     [](ManagedObject& owner, QLApp& app) { category(owner).removeBlockedApp(app); }},
};

}  // namespace

std::span<const StoredAttribute> storedAttributes(Entity entity) {
  switch (entity) {
    case Entity::snippet:
      return kSnippet;
    case Entity::category:
      return kCategory;
    case Entity::app:
      return kApp;
    case Entity::user:
      return kUser;
  }
  return {};
}

bool isUnsaved(const ManagedObject& record, const Property& property) {
  const auto& changed = record.changedProperties();
  const auto has = [&](const Property& each) { return std::ranges::find(changed, &each) != changed.end(); };
  const bool isPartOfText =
      &property == &QLSnippet::kPlainText || &property == &QLSnippet::kNumberOFImagesString;
  return has(property) || (isPartOfText && has(QLSnippet::kText));
}

std::span<const StoredRelationship> storedRelationships(Entity owner) {
  switch (owner) {
    case Entity::snippet:
      return kSnippetApps;
    case Entity::category:
      return kCategoryApps;
    default:
      return {};
  }
}

}  // namespace quorlo
