#include "store/records/ql_snippet.h"

#include "base/localized.h"
#include "store/context/managed_object_context.h"
#include "store/context/relationship.h"
#include "store/localized_format.h"
#include "store/records/ql_app.h"
#include "store/records/ql_category.h"
#include "store/records/snippet_image.h"
#include "store/records/snippet_text_cache.h"
#include "store/uuid.h"
#include "text/graphemes.h"

#include <algorithm>
#include <utility>

namespace quorlo {
namespace {

constexpr std::size_t kLongestDerivedTitle = 60;  // user-perceived characters

const QLSnippet& snippet(const ManagedObject& record) {
  return static_cast<const QLSnippet&>(record);
}

template <class T>
ValueView orNil(const std::optional<T>& value) {
  return value ? ValueView(*value) : ValueView();
}

// To-many relationships and rich text have no value to compare.
ValueView unread(const ManagedObject&) {
  return {};
}

}  // namespace

std::u16string titleFromText(std::u16string_view text) {
  constexpr std::u16string_view kBlanks = u" \t\r\n\u00A0\u2028\u2029\uFFFC";
  const auto start = std::min(text.find_first_not_of(kBlanks), text.size());
  auto line = text.substr(start, text.find_first_of(u"\r\n\u2028\u2029", start) - start);
  line = line.substr(0, line.find_last_not_of(kBlanks) + 1);
  const auto starts = graphemeStarts(line.substr(0, 64 * kLongestDerivedTitle));
  if (starts.size() > kLongestDerivedTitle) line = line.substr(0, starts[kLongestDerivedTitle]);
  return std::u16string(line);
}

constinit const Attribute<std::string_view> QLSnippet::kUuid{
    {kEntity, "uuid",
     [](const ManagedObject& record) -> ValueView { return std::string_view(snippet(record).uuid_); }}};
constinit const Attribute<Date> QLSnippet::kCreationDate{
    {kEntity, "creationDate",
     [](const ManagedObject& record) -> ValueView { return orNil(snippet(record).creationDate_); }}};
constinit const Attribute<Date> QLSnippet::kModifiedDate{
    {kEntity, "modifiedDate",
     [](const ManagedObject& record) -> ValueView { return orNil(snippet(record).modifiedDate_); }}};
constinit const Attribute<Date> QLSnippet::kDeletionDate{
    {kEntity, "deletionDate",
     [](const ManagedObject& record) -> ValueView { return orNil(snippet(record).deletionDate_); }}};
constinit const Attribute<std::u16string_view> QLSnippet::kTitle{
    {kEntity, "title",
     [](const ManagedObject& record) -> ValueView { return std::u16string_view(snippet(record).title_); },
     true}};
constinit const Attribute<std::int64_t> QLSnippet::kTitleIsCustom{
    {kEntity, "titleIsCustom",
     [](const ManagedObject& record) -> ValueView { return std::int64_t{snippet(record).titleIsCustom_}; }}};
constinit const Attribute<std::u16string_view> QLSnippet::kAbbreviation{
    {kEntity, "abbreviation",
     [](const ManagedObject& record) -> ValueView {
       const std::u16string_view value = snippet(record).abbreviation_;
       return value.empty() && !snippet(record).emptyAbbreviationIsStored_ ? ValueView() : value;
     },
     true}};
constinit const Attribute<std::u16string_view> QLSnippet::kPlainText{
    {kEntity, "plainText",
     [](const ManagedObject& record) -> ValueView { return std::u16string_view(snippet(record).plainText_); },
     true}};
constinit const Attribute<std::int64_t> QLSnippet::kFormatted{
    {kEntity, "formatted",
     [](const ManagedObject& record) -> ValueView { return snippet(record).formatted_; }}};
constinit const Attribute<std::int64_t> QLSnippet::kUseCount{
    {kEntity, "useCount",
     [](const ManagedObject& record) -> ValueView { return snippet(record).useCount_; }}};
constinit const Property QLSnippet::kText{kEntity, "text", unread};
constinit const Property QLSnippet::kNumberOFImagesString{
    kEntity, "numberOFImagesString", [](const ManagedObject& record) -> ValueView {
      return static_cast<std::int64_t>(snippet(record).imageCount_);
    }};
constinit const Attribute<const ManagedObject*> QLSnippet::kCategory{
    {kEntity, "category", [](const ManagedObject& record) -> ValueView {
       const ManagedObject* category = snippet(record).category_;
       return category == nullptr ? ValueView() : category;
     }}};
constinit const Attribute<std::int64_t> QLSnippet::kCategoryType{
    {kEntity, "category.type", [](const ManagedObject& record) -> ValueView {
       const auto* category = snippet(record).category_;
       return category == nullptr ? ValueView() : category->type();
     }}};
constinit const Attribute<std::int64_t> QLSnippet::kCategorySourceType{
    {kEntity, "category.sourceType", [](const ManagedObject& record) -> ValueView {
       const auto* category = snippet(record).category_;
       return category == nullptr ? ValueView() : category->sourceType();
     }}};
constinit const Property QLSnippet::kAllowedApps{kEntity, "allowedApps", unread};
constinit const Property QLSnippet::kBlockedSnippets{kEntity, "blockedSnippets", unread};

QLSnippet::QLSnippet() : ManagedObject(kEntity) {}
QLSnippet::~QLSnippet() = default;

void QLSnippet::setUuid(std::string uuid) {
  if (uuid == uuid_) return;
  auto* const context = managedObjectContext();
  if (context != nullptr) context->uuidIndex(kEntity).remove(*this);
  uuid_ = std::move(uuid);
  if (context != nullptr) context->uuidIndex(kEntity).add(*this);
  didChange(kUuid);
}
void QLSnippet::setCreationDate(Date date) {
  set(creationDate_, std::optional(date), kCreationDate);
}
void QLSnippet::setModifiedDate(Date date) {
  set(modifiedDate_, std::optional(date), kModifiedDate);
}

void QLSnippet::setDeletionDate(std::optional<Date> date) {
  if (date == deletionDate_) return;
  leaveIndex();
  deletionDate_ = date;
  enterIndex();
  didChange(kDeletionDate);
}

void QLSnippet::moveToTrash() {
  if (const auto* context = managedObjectContext()) setDeletionDate(context->now());
}

bool QLSnippet::isLive() const {
  return !deletionDate_ &&
         (category_ == nullptr || category_->sourceType() != static_cast<std::int64_t>(SourceType::Public));
}

void QLSnippet::setTitle(std::u16string title) {
  if (set(title_, std::move(title), kTitle)) touch();
}

std::u16string QLSnippet::displayTitle() const {
  return title_.empty() ? localized(u"Untitled") : title_;
}

void QLSnippet::setTitleIsCustom(bool isCustom) {
  set(titleIsCustom_, isCustom, kTitleIsCustom);
}

void QLSnippet::setAbbreviation(std::u16string abbreviation) {
  const bool isOther = abbreviation != abbreviation_;
  if (!isOther && !emptyAbbreviationIsStored_) return;
  leaveIndex();
  emptyAbbreviationIsStored_ = false;
  abbreviation_ = std::move(abbreviation);
  enterIndex();
  didChange(kAbbreviation);
  if (isOther) touch();
}

void QLSnippet::setFormatted(std::int64_t rawValue) {
  if (set(formatted_, rawValue, kFormatted)) touch();
}

void QLSnippet::setUseCount(std::int64_t count) {
  set(useCount_, count, kUseCount);
}

std::u16string QLSnippet::useCountText() const {
  return localizedCount(useCount_, u"This snippet has been used once.",
                        u"This snippet has been used %d times.");
}

std::shared_ptr<QLCategory> QLSnippet::category() const {
  return category_ == nullptr ? nullptr : std::static_pointer_cast<QLCategory>(category_->shared_from_this());
}

void QLSnippet::setCategory(QLCategory* category) {
  if (category == category_ || (category != nullptr && !sharesContextWith(*category))) return;
  auto* const former = category_;
  leaveIndex();
  category_ = category;
  enterIndex();
  if (former != nullptr) former->snippets_.remove(this);
  if (category != nullptr) category->snippets_.add(this);

  didChange(kCategory);
  if (former != nullptr) former->didChange(QLCategory::kSnippets);
  if (category != nullptr) category->didChange(QLCategory::kSnippets);
}

void QLSnippet::addAllowedApp(QLApp& app) {
  Relationship::join(*this, allowedApps_, &kAllowedApps, app, app.allowedSnippets_, &QLApp::kAllowedSnippets);
}
void QLSnippet::removeAllowedApp(QLApp& app) {
  Relationship::part(*this, allowedApps_, &kAllowedApps, app, app.allowedSnippets_, &QLApp::kAllowedSnippets);
}
void QLSnippet::addBlockedSnippet(QLApp& app) {
  Relationship::join(*this, blockedSnippets_, &kBlockedSnippets, app, app.blockedApps_, &QLApp::kBlockedApps);
}
void QLSnippet::removeBlockedSnippet(QLApp& app) {
  Relationship::part(*this, blockedSnippets_, &kBlockedSnippets, app, app.blockedApps_, &QLApp::kBlockedApps);
}

void QLSnippet::awakeFromInsert(ManagedObjectContext& context) {
  if (context.kind() == ManagedObjectContext::Kind::main) {
    if (uuid_.empty()) uuid_ = randomUuid();
    if (!creationDate_) creationDate_ = context.now();
    context.followUpLater(*this);
  }
  enterIndex();
  context.registerObserver();
}

void QLSnippet::awakeFromFetch() {
  if (uuid_.empty()) setUuid(randomUuid());
  managedObjectContext()->registerObserver();
}

// The index comes last, as setting the category enters it.
void QLSnippet::prepareForDeletion() {
  setCategory(nullptr);
  for (auto* each : Relationship::copy(allowedApps_)) removeAllowedApp(*each);
  for (auto* each : Relationship::copy(blockedSnippets_)) removeBlockedSnippet(*each);
  leaveIndex();
}

void QLSnippet::dropRelationships() {
  category_ = nullptr;
  allowedApps_.clear();
  blockedSnippets_.clear();
  isIndexed_ = false;
}

// Of a rich text that was not read before only the characters are left.
void QLSnippet::didLoseRow() {
  if (richTextPlace_ == RichTextPlace::both) richTextPlace_ = RichTextPlace::here;
  if (richTextPlace_ != RichTextPlace::here) richTextPlace_ = RichTextPlace::none;
  storedUseCount_ = 0;
}

void QLSnippet::touch() {
  const auto* context = managedObjectContext();
  if (context != nullptr && !context->takesFromStore()) setModifiedDate(context->now());
}

void QLSnippet::deriveTitle() {
  if (!title_.empty() || titleIsCustom_ || isDeleted()) return;
  setTitle(titleFromText(plainText_));
}

void QLSnippet::leaveIndex() {
  if (std::exchange(isIndexed_, false)) managedObjectContext()->index_.abbreviations.remove(*this);
}

void QLSnippet::enterIndex() {
  auto* context = managedObjectContext();
  if (context == nullptr || abbreviation_.empty() || !isLive()) return;
  context->index_.abbreviations.add(*this);
  isIndexed_ = true;
}

}  // namespace quorlo
