#include "store/records/ql_category.h"

#include "base/localized.h"
#include "base/log.h"
#include "store/context/fetch_request.h"
#include "store/context/managed_object_context.h"
#include "store/context/relationship.h"
#include "store/records/ql_app.h"
#include "store/records/ql_snippet.h"
#include "store/uuid.h"

#include <algorithm>
#include <utility>

namespace quorlo {
namespace {

const QLCategory& category(const ManagedObject& record) {
  return static_cast<const QLCategory&>(record);
}

template <class T>
ValueView orNil(const std::optional<T>& value) {
  return value ? ValueView(*value) : ValueView();
}

// To-many relationships have no value to compare.
ValueView unread(const ManagedObject&) {
  return {};
}

Predicate ofType(SnippetType type) {
  return Predicate::all(
      {QLSnippet::kFormatted.equals(static_cast<std::int64_t>(type)), QLSnippet::kDeletionDate.isNil()});
}

}  // namespace

constinit const Attribute<std::string_view> QLCategory::kUuid{
    {kEntity, "uuid",
     [](const ManagedObject& record) -> ValueView { return std::string_view(category(record).uuid_); }}};
constinit const Attribute<Date> QLCategory::kCreationDate{
    {kEntity, "creationDate",
     [](const ManagedObject& record) -> ValueView { return orNil(category(record).creationDate_); }}};
constinit const Attribute<Date> QLCategory::kModifiedDate{
    {kEntity, "modifiedDate",
     [](const ManagedObject& record) -> ValueView { return orNil(category(record).modifiedDate_); }}};
constinit const Attribute<std::u16string_view> QLCategory::kTitle{
    {kEntity, "title",
     [](const ManagedObject& record) -> ValueView { return std::u16string_view(category(record).title_); }}};
constinit const Attribute<std::int64_t> QLCategory::kType{
    {kEntity, "type", [](const ManagedObject& record) -> ValueView { return category(record).type_; }}};
constinit const Attribute<std::int64_t> QLCategory::kSourceType{
    {kEntity, "sourceType",
     [](const ManagedObject& record) -> ValueView { return category(record).sourceType_; }}};
constinit const Attribute<std::int64_t> QLCategory::kSort{
    {kEntity, "sort", [](const ManagedObject& record) -> ValueView { return category(record).sort_; }}};
constinit const Attribute<std::int64_t> QLCategory::kShortcutKeyCode{
    {kEntity, "shortcutKeyCode",
     [](const ManagedObject& record) -> ValueView { return orNil(category(record).shortcutKeyCode_); }}};
constinit const Attribute<std::int64_t> QLCategory::kShortcutModifierFlags{
    {kEntity, "shortcutModifierFlags",
     [](const ManagedObject& record) -> ValueView { return category(record).shortcutModifierFlags_; }}};
constinit const Attribute<std::int64_t> QLCategory::kExpansionBehavior{
    {kEntity, "expansionBehavior",
     [](const ManagedObject& record) -> ValueView { return category(record).expansionBehavior_; }}};
constinit const Property QLCategory::kAllowedApps{kEntity, "allowedApps", unread};
constinit const Property QLCategory::kBlockedApps{kEntity, "blockedApps", unread};
constinit const Property QLCategory::kSnippets{
    .entity = kEntity, .name = "snippets", .read = unread, .isInverse = true};

void QLCategory::setUuid(std::string uuid) {
  if (uuid == uuid_) return;
  auto* const context = managedObjectContext();
  if (context != nullptr) context->uuidIndex(kEntity).remove(*this);
  uuid_ = std::move(uuid);
  if (context != nullptr) context->uuidIndex(kEntity).add(*this);
  didChange(kUuid);
}
void QLCategory::setCreationDate(Date date) {
  set(creationDate_, std::optional(date), kCreationDate);
}
void QLCategory::setModifiedDate(Date date) {
  set(modifiedDate_, std::optional(date), kModifiedDate);
}

std::u16string QLCategory::title() const {
  const auto known = categoryType(type_);
  return (known ? builtInTitle(*known) : std::nullopt).value_or(title_);
}

void QLCategory::setTitle(std::u16string title) {
  if (set(title_, std::move(title), kTitle)) touch();
}

void QLCategory::setType(std::int64_t type) {
  if (!set(type_, type, kType)) return;
  announce("title");
  announce("image");
  touch();
}

std::string_view QLCategory::image() const {
  return symbolName(categoryType(type_).value_or(CategoryType::Folder));
}

void QLCategory::setSourceType(std::int64_t sourceType) {
  if (sourceType == sourceType_) return;
  for (auto* each : snippets_) each->leaveIndex();
  sourceType_ = sourceType;
  for (auto* each : snippets_) each->enterIndex();
  didChange(kSourceType);
  announce("sourceName");
}

std::u16string QLCategory::sourceName() const {
  const auto known = quorlo::sourceType(sourceType_);
  return known ? sectionTitle(*known) : std::u16string();
}

void QLCategory::setSort(std::int64_t sort) {
  set(sort_, sort, kSort);
}

void QLCategory::setShortcutKeyCode(std::optional<std::int64_t> keyCode) {
  if (!set(shortcutKeyCode_, keyCode, kShortcutKeyCode)) return;
  announce("shortcutValue");
  touch();
}

void QLCategory::setShortcutModifierFlags(std::int64_t flags) {
  if (!set(shortcutModifierFlags_, flags, kShortcutModifierFlags)) return;
  announce("shortcutValue");
  touch();
}

std::optional<Shortcut> QLCategory::shortcutValue() const {
  if (!shortcutKeyCode_) return std::nullopt;
  return Shortcut{static_cast<KeyCode>(*shortcutKeyCode_),
                  static_cast<ModifierFlags>(shortcutModifierFlags_)};
}

void QLCategory::setShortcutValue(std::optional<Shortcut> shortcut) {
  if (shortcut) setShortcutModifierFlags(shortcut->modifierFlags);
  setShortcutKeyCode(shortcut ? std::optional<std::int64_t>(shortcut->keyCode) : std::nullopt);
}

void QLCategory::setExpansionBehavior(std::int64_t behavior) {
  if (set(expansionBehavior_, behavior, kExpansionBehavior)) touch();
}

void QLCategory::addAllowedApp(QLApp& app) {
  if (Relationship::join(*this, allowedApps_, &kAllowedApps, app, app.allowingCategories_, nullptr)) touch();
}
void QLCategory::removeAllowedApp(QLApp& app) {
  if (Relationship::part(*this, allowedApps_, &kAllowedApps, app, app.allowingCategories_, nullptr)) touch();
}
void QLCategory::addBlockedApp(QLApp& app) {
  if (Relationship::join(*this, blockedApps_, &kBlockedApps, app, app.blockingCategories_, nullptr)) touch();
}
void QLCategory::removeBlockedApp(QLApp& app) {
  if (Relationship::part(*this, blockedApps_, &kBlockedApps, app, app.blockingCategories_, nullptr)) touch();
}

Predicate QLCategory::predicate() const {
  constexpr auto kTrash = static_cast<std::int64_t>(CategoryType::Trash);
  const auto isLive = QLSnippet::kDeletionDate.isNil();
  const auto isOutsideTrash = QLSnippet::kCategoryType.differsFrom(kTrash);
  const auto type = categoryType(type_);
  if (!type) return Predicate::always(false);
  switch (*type) {
    case CategoryType::AllSnippets:
      return Predicate::any({Predicate::all({isOutsideTrash, isLive}),
                             Predicate::all({QLSnippet::kCategoryType.isNil(), isLive})});
    case CategoryType::Popular:
      return Predicate::all(
          {QLSnippet::kUseCount.greaterThan(0).inParentheses(), isOutsideTrash.inParentheses(), isLive});
    case CategoryType::PlainText:
      return ofType(SnippetType::plainText);
    case CategoryType::Formatted:
      return ofType(SnippetType::formatted);
    case CategoryType::Image:
      return ofType(SnippetType::image);
    case CategoryType::Code:
      return ofType(SnippetType::code);
    case CategoryType::Folder:
      return Predicate::all({QLSnippet::kCategory.equals(this), isLive});
    case CategoryType::SharedFolder:
      logError("Not yet implemented #dthjddd2");
      return Predicate::always(false);
    case CategoryType::Macros:
      return Predicate::always(false);
    case CategoryType::Trash:
      return QLSnippet::kDeletionDate.isNotNil();
  }
  return Predicate::always(false);
}

void QLCategory::countSnippets() {
  if (const auto count = currentNumberOfSnippets(); count != numberOfSnippets_) {
    numberOfSnippets_ = count;
    announce("numberOfSnippets");
  }
}

std::size_t QLCategory::currentNumberOfSnippets() const {
  const auto* context = managedObjectContext();
  const auto type = categoryType(type_);
  if (context == nullptr || !type) return 0;
  if (*type == CategoryType::Folder) {
    return static_cast<std::size_t>(
        std::ranges::count_if(snippets_, [](const QLSnippet* each) { return !each->deletionDate(); }));
  }
  if (*type == CategoryType::Macros || *type == CategoryType::SharedFolder) return 0;
  const auto count = context->count(Entity::snippet, predicate());
  return count ? count.value() : 0;
}

std::vector<SortDescriptor> QLCategory::sortDescriptors() {
  return {{&kSourceType}, {&kSort}, {&kType}};
}

void QLCategory::awakeFromInsert(ManagedObjectContext& context) {
  if (context.kind() == ManagedObjectContext::Kind::main) {
    if (uuid_.empty()) uuid_ = randomUuid();
    if (!creationDate_) creationDate_ = context.now();
  }
  context.registerObserver();
}

void QLCategory::awakeFromFetch() {
  if (uuid_.empty()) setUuid(randomUuid());
  managedObjectContext()->registerObserver();
}

// The snippets stay, in no folder.
void QLCategory::prepareForDeletion() {
  for (auto* each : Relationship::copy(snippets_)) each->setCategory(nullptr);
  for (auto* each : Relationship::copy(allowedApps_)) removeAllowedApp(*each);
  for (auto* each : Relationship::copy(blockedApps_)) removeBlockedApp(*each);
}

void QLCategory::dropRelationships() {
  allowedApps_.clear();
  blockedApps_.clear();
  snippets_.clear();
}

std::vector<ManagedObject::Referrer> QLCategory::referrers() const {
  std::vector<Referrer> found;
  for (auto* each : snippets_) found.push_back({*each, QLSnippet::kCategory});
  return found;
}

void QLCategory::touch() {
  const auto* context = managedObjectContext();
  if (context != nullptr && !context->takesFromStore()) setModifiedDate(context->now());
}

}  // namespace quorlo
