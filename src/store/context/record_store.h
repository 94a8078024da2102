#pragma once

#include "base/date.h"
#include "base/result.h"
#include "store/history/history_transaction.h"
#include "text/attributed_string.h"

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

struct ChangeSet;
class ManagedObject;
class ManagedObjectContext;
class QLSnippet;

// Who saves, as the history tells it.
struct Writer {
  std::string author;
  std::string contextName;
  std::string session;  // tells writers of the same names in several processes apart
};

// Hears now and then how much of a save is written, from 0 to 1. The save is called off when it returns
// false.
using SaveProgress = std::function<bool(double fraction)>;

// Where the records of one context are kept. Belongs to that context and its thread.
class RecordStore {
 public:
  virtual ~RecordStore() = default;

  // Fills an empty context with every record, rich texts left out. After an error the context holds a part
  // of them and is good for nothing.
  virtual Status load(ManagedObjectContext& context) = 0;

  // Deletes those of the trashed snippets that the store, too, has had in the trash since `limit` at least,
  // in one transaction, and returns them. None when the clock is far ahead of what others have saved last.
  virtual Result<std::vector<std::shared_ptr<QLSnippet>>> purge(
      std::span<const std::shared_ptr<QLSnippet>> trashed, Date limit, const Writer& writer, Date now) = 0;

  // Makes the changes permanent, all of them or none: of updated records only the changed properties. An
  // updated record that others have deleted meanwhile is returned; then nothing is written, and the record
  // can be saved as an inserted one that keeps its row. Otherwise the inserted records have their rows.
  // A save that is called off is an error.
  virtual Result<std::vector<std::shared_ptr<ManagedObject>>> save(const ChangeSet& changes,
                                                                   const Writer& writer, Date now,
                                                                   const SaveProgress& progress) = 0;

  // Brings the records that others have changed up to what the store holds now. What is unsaved in the
  // context stays, property by property. After an error some records may not be up to date; the same changes
  // can be taken over again.
  virtual Status refresh(ManagedObjectContext& context, std::span<const HistoryChange> changes) = 0;

  // Whether a repair that is done once in the life of a library has been done, and that it has been.
  virtual Result<bool> hasRepaired(std::string_view name) = 0;
  virtual Status noteRepaired(std::string_view name) = 0;

  // Brings every record up to what the store holds now, which may be another library. Nothing is unsaved.
  virtual Status reload(ManagedObjectContext& context) = 0;

  // Nothing when the store has none for the snippet (any more); an error when it cannot be read.
  virtual Result<std::optional<AttributedString>> richText(const QLSnippet& snippet) = 0;
};

}  // namespace quorlo
