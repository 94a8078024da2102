#pragma once

#include "platform/shortcut.h"
#include "store/context/managed_object.h"
#include "store/context/predicate.h"
#include "store/context/record_set.h"
#include "store/records/folder_types.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

struct SortDescriptor;
class QLApp;
class QLSnippet;

// A folder, built-in or the user's.
class QLCategory final : public ManagedObject {
 public:
  static constexpr Entity kEntity = Entity::category;
  static const Attribute<std::string_view> kUuid;
  static const Attribute<Date> kCreationDate;
  static const Attribute<Date> kModifiedDate;
  static const Attribute<std::u16string_view> kTitle;
  static const Attribute<std::int64_t> kType;
  static const Attribute<std::int64_t> kSourceType;
  static const Attribute<std::int64_t> kSort;
  static const Attribute<std::int64_t> kShortcutKeyCode;
  static const Attribute<std::int64_t> kShortcutModifierFlags;
  static const Attribute<std::int64_t> kExpansionBehavior;
  static const Property kAllowedApps;
  static const Property kBlockedApps;
  static const Property kSnippets;

  QLCategory() : ManagedObject(kEntity) {}

  // Both set on insertion in the main context, unless they are given.
  const std::string& uuid() const { return uuid_; }
  void setUuid(std::string uuid);
  std::optional<Date> creationDate() const { return creationDate_; }
  void setCreationDate(Date date);

  // Follows changes of title, type, shortcut and application rules.
  std::optional<Date> modifiedDate() const { return modifiedDate_; }
  void setModifiedDate(Date date);

  // What the user called the folder; for a built-in one a fixed name in the user's language.
  std::u16string title() const;
  void setTitle(std::u16string title);

  // The raw value of a CategoryType. Announces a change of "title" and "image" too.
  std::int64_t type() const { return type_; }
  void setType(std::int64_t type);
  std::string_view image() const;  // the name of a symbol

  // The raw value of a SourceType.
  std::int64_t sourceType() const { return sourceType_; }
  void setSourceType(std::int64_t sourceType);
  std::u16string sourceName() const;  // the title of the section; empty when it has none

  // The place within the section.
  std::int64_t sort() const { return sort_; }
  void setSort(std::int64_t sort);

  // Nil when the folder has no hot key.
  std::optional<std::int64_t> shortcutKeyCode() const { return shortcutKeyCode_; }
  void setShortcutKeyCode(std::optional<std::int64_t> keyCode);
  std::int64_t shortcutModifierFlags() const { return shortcutModifierFlags_; }
  void setShortcutModifierFlags(std::int64_t flags);
  // Both as one value; clearing it leaves the modifier flags.
  std::optional<Shortcut> shortcutValue() const;
  void setShortcutValue(std::optional<Shortcut> shortcut);

  // The raw value of an ExpansionBehavior, as stored; one that is none of the cases disables expansion.
  std::int64_t expansionBehavior() const { return expansionBehavior_; }
  void setExpansionBehavior(std::int64_t behavior);

  // The applications of OnlyTheseApplications and of AllApplicationsWithExeption.
  const RecordSet<QLApp>& allowedApps() const { return allowedApps_; }
  void addAllowedApp(QLApp& app);
  void removeAllowedApp(QLApp& app);
  const RecordSet<QLApp>& blockedApps() const { return blockedApps_; }
  void addBlockedApp(QLApp& app);
  void removeBlockedApp(QLApp& app);

  // The inverse of QLSnippet::category, through which it is set. Holds trashed snippets too.
  const RecordSet<QLSnippet>& snippets() const { return snippets_; }

  // Which snippets the folder shows.
  Predicate predicate() const;
  // How many they were when they were counted last; counting announces "numberOfSnippets" when it changes.
  std::size_t numberOfSnippets() const { return numberOfSnippets_; }
  void countSnippets();

  // The order in which folders are listed: sourceType, sort, type.
  static std::vector<SortDescriptor> sortDescriptors();

 private:
  friend class QLApp;
  friend class QLSnippet;
  void awakeFromInsert(ManagedObjectContext& context) override;
  void awakeFromFetch() override;
  void prepareForDeletion() override;
  void dropRelationships() override;
  std::vector<Referrer> referrers() const override;
  void touch();
  std::size_t currentNumberOfSnippets() const;

  std::string uuid_;
  std::optional<Date> creationDate_;
  std::optional<Date> modifiedDate_;
  std::u16string title_;
  std::int64_t type_ = 0;
  std::int64_t sourceType_ = static_cast<std::int64_t>(SourceType::Folders);
  std::int64_t sort_ = 0;
  std::optional<std::int64_t> shortcutKeyCode_;
  std::int64_t shortcutModifierFlags_ = 0;
  std::int64_t expansionBehavior_ = 0;
  std::size_t numberOfSnippets_ = 0;
  RecordSet<QLApp> allowedApps_;
  RecordSet<QLApp> blockedApps_;
  RecordSet<QLSnippet> snippets_;
};

}  // namespace quorlo
