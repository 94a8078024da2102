#include "store/context/store_access.h"

#include "store/context/revival.h"
#include "store/records/ql_app.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/records/ql_user.h"
#include "store/records/snippet_text_cache.h"

#include <utility>

namespace quorlo {
namespace {

std::shared_ptr<ManagedObject> make(Entity entity) {
  switch (entity) {
    case Entity::snippet:
      return std::make_shared<QLSnippet>();
    case Entity::category:
      return std::make_shared<QLCategory>();
    case Entity::app:
      return std::make_shared<QLApp>();
    case Entity::user:
      return std::make_shared<QLUser>();
  }
  return nullptr;
}

}  // namespace

StoreAccess::StoreAccess(ManagedObjectContext& context, Purpose purpose) : context_(context) {
  context_.origin_ =
      purpose == Purpose::load ? ManagedObjectContext::Origin::loading : ManagedObjectContext::Origin::others;
}

StoreAccess::~StoreAccess() {
  context_.endTakingFromStore();
}

void StoreAccess::expect(Entity entity, std::size_t count) {
  context_.table(entity).rows.reserve(count);
  context_.byRow_[static_cast<std::size_t>(entity)].reserve(count);
}

ManagedObject& StoreAccess::add(Entity entity, std::int64_t row) {
  const auto record = make(entity);
  record->rowNumber_ = row;
  context_.enter(record);
  context_.byRow_[static_cast<std::size_t>(entity)][row] = record.get();
  if (context_.origin_ == ManagedObjectContext::Origin::others) {
    context_.pending_.noteInsertion(record);
    context_.scheduleProcessing();
  }
  return *record;
}

ManagedObject* StoreAccess::record(Entity entity, std::int64_t row) const {
  const auto& rows = context_.byRow_[static_cast<std::size_t>(entity)];
  const auto found = rows.find(row);
  return found == rows.end() ? nullptr : found->second;
}

bool StoreAccess::isDeletedHere(Entity entity, std::int64_t row) const {
  const auto& rows = context_.byRow_[static_cast<std::size_t>(entity)];
  const auto found = rows.find(row);
  return found != rows.end() && found->second == nullptr;
}

void StoreAccess::setEmptyAbbreviation(QLSnippet& snippet) {
  snippet.setAbbreviation({});
  snippet.emptyAbbreviationIsStored_ = true;
}

bool StoreAccess::isUnsaved(const ManagedObject& record) const {
  return context_.unsaved_.holds(record);
}

bool StoreAccess::isNewToStore(const ManagedObject& record) const {
  return context_.unsaved_.holdsInsertionOf(record);
}

std::vector<std::int64_t> StoreAccess::rows(const ManagedObjectContext& context, Entity entity) {
  std::vector<std::int64_t> rows;
  for (const auto& [row, record] : context.byRow_[static_cast<std::size_t>(entity)]) rows.push_back(row);
  return rows;
}

std::vector<ManagedObject*> StoreAccess::referrers(const ManagedObject& record) {
  std::vector<ManagedObject*> saved;
  for (const auto& each : record.referrers()) {
    if (each.record.rowNumber_ != 0) saved.push_back(&each.record);
  }
  return saved;
}

void StoreAccess::remove(ManagedObject& record) {
  if (isNewToStore(record)) return;
  if (isUnsaved(record) && revives(record)) {
    context_.keep(record);
  } else {
    context_.unsaved_.forget(record);
    context_.deleteObject(record);
  }
}

void StoreAccess::setPlainText(QLSnippet& snippet, std::u16string text) {
  if (text == snippet.plainText_) return;
  snippet.plainText_ = std::move(text);
  snippet.cache_.reset();
  snippet.didChange(QLSnippet::kPlainText);
}

void StoreAccess::setImageCount(QLSnippet& snippet, std::size_t count) {
  if (std::exchange(snippet.imageCount_, count) != count) snippet.didChange(QLSnippet::kNumberOFImagesString);
}

void StoreAccess::setUseCount(QLSnippet& snippet, std::int64_t stored) {
  snippet.setUseCount(stored + unsavedUses(snippet));
  snippet.storedUseCount_ = stored;
}

void StoreAccess::setSavedChars(QLUser& user, std::int64_t stored) {
  user.setSavedChars(stored + unsavedSavedChars(user));
  user.storedSavedChars_ = stored;
}

void StoreAccess::setSavedMinutes(QLUser& user, double stored) {
  user.setSavedMinutes(stored + unsavedSavedMinutes(user));
  user.storedSavedMinutes_ = stored;
}

std::int64_t StoreAccess::unsavedUses(const QLSnippet& snippet) {
  return snippet.useCount_ - snippet.storedUseCount_;
}

std::int64_t StoreAccess::unsavedSavedChars(const QLUser& user) {
  return user.savedChars_ - user.storedSavedChars_;
}

double StoreAccess::unsavedSavedMinutes(const QLUser& user) {
  return user.savedMinutes_ - user.storedSavedMinutes_;
}

void StoreAccess::setRichTextIsInStore(QLSnippet& snippet, bool isInStore) {
  using Place = QLSnippet::RichTextPlace;
  snippet.richTextPlace_ = isInStore ? Place::store : Place::none;
  snippet.richText_.reset();
  snippet.cache_.reset();
  if (std::exchange(snippet.updatesImagesAfterTextChange_, false)) snippet.imagesAreBuilt_ = false;
  snippet.didChange(QLSnippet::kText);
}

const AttributedString* StoreAccess::loadedRichText(const QLSnippet& snippet) {
  return snippet.richText_.get();
}

void StoreAccess::didSave(ManagedObject& record, std::int64_t row) {
  if (record.context_ != nullptr) {
    auto& rows = record.context_->byRow_[static_cast<std::size_t>(record.entity())];
    if (record.rowNumber_ != row) rows.erase(record.rowNumber_);
    rows[row] = &record;
  }
  record.rowNumber_ = row;
  if (record.entity() == Entity::snippet) {
    auto& snippet = static_cast<QLSnippet&>(record);
    using Place = QLSnippet::RichTextPlace;
    if (snippet.richTextPlace_ == Place::here) snippet.richTextPlace_ = Place::both;
    snippet.storedUseCount_ = snippet.useCount_;
  } else if (record.entity() == Entity::user) {
    auto& user = static_cast<QLUser&>(record);
    user.storedSavedChars_ = user.savedChars_;
    user.storedSavedMinutes_ = user.savedMinutes_;
  }
}

}  // namespace quorlo
