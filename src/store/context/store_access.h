#pragma once

#include "store/context/entity.h"
#include "store/context/managed_object_context.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quorlo {

class AttributedString;
class QLSnippet;
class QLUser;

// What a store may do to a context and its records that nobody else may. On the context's thread.
//
// While one exists, the setters of the context's records take over what the store holds: nothing counts as
// unsaved, and modification dates stay as they are. The observers of records hear of it when the access ends,
// when the store must be ready for whatever they do.
class StoreAccess {
 public:
  enum class Purpose {
    load,     // nobody is told
    refresh,  // the context's observers are told, as of any change
  };
  StoreAccess(ManagedObjectContext& context, Purpose purpose);
  StoreAccess(const StoreAccess&) = delete;
  StoreAccess& operator=(const StoreAccess&) = delete;
  ~StoreAccess();

  void expect(Entity entity, std::size_t count);  // makes room

  // An empty record for a row that the context does not have.
  ManagedObject& add(Entity entity, std::int64_t row);

  // Null when the context does not have it; then `isDeletedHere` tells whether it was deleted and that has
  // not been saved yet.
  ManagedObject* record(Entity entity, std::int64_t row) const;
  bool isDeletedHere(Entity entity, std::int64_t row) const;

  // It has changes that the store does not have yet.
  bool isUnsaved(const ManagedObject& record) const;
  bool isNewToStore(const ManagedObject& record) const;

  // Of all records that are in the store.
  static std::vector<std::int64_t> rows(const ManagedObjectContext& context, Entity entity);

  // The saved records whose stored relationships lead to this one.
  static std::vector<ManagedObject*> referrers(const ManagedObject& record);

  // Others have deleted it. With unsaved changes that revive it, it stays, as one that is new to the store.
  void remove(ManagedObject& record);

  // What versions before wrote for no abbreviation; it is not nil until somebody sets it.
  static void setEmptyAbbreviation(QLSnippet& snippet);

  // These leave the rich text as it is.
  static void setPlainText(QLSnippet& snippet, std::u16string text);
  static void setImageCount(QLSnippet& snippet, std::size_t count);

  // Counters are what the store holds and what was added here since.
  static void setUseCount(QLSnippet& snippet, std::int64_t stored);
  static void setSavedChars(QLUser& user, std::int64_t stored);
  static void setSavedMinutes(QLUser& user, double stored);
  // What the store does not have yet.
  static std::int64_t unsavedUses(const QLSnippet& snippet);
  static std::int64_t unsavedSavedChars(const QLUser& user);
  static double unsavedSavedMinutes(const QLUser& user);

  // The rich text may be another one: it is to be read from the store when it is asked for, or there is none.
  static void setRichTextIsInStore(QLSnippet& snippet, bool isInStore);

  // As it is here, without reading it: null when it is plain or was not read yet.
  static const AttributedString* loadedRichText(const QLSnippet& snippet);

  // After a save. The record keeps its row from then on, and its rich text is in the store.
  static void didSave(ManagedObject& record, std::int64_t row);

 private:
  ManagedObjectContext& context_;
};

}  // namespace quorlo
