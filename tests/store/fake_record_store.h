#pragma once

#include "store/context/change_log.h"
#include "store/context/record_store.h"

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace quorlo {

// A store that only keeps what it was given to save, or refuses it. Both arguments outlive it.
class FakeRecordStore final : public RecordStore {
 public:
  FakeRecordStore(std::vector<ChangeSet>& commits, const Status& result)
      : commits_(commits), result_(result) {}

  Status load(ManagedObjectContext&) override { return {}; }
  Result<std::vector<std::shared_ptr<QLSnippet>>> purge(std::span<const std::shared_ptr<QLSnippet>> trashed,
                                                        Date, const Writer&, Date) override {
    return std::vector(trashed.begin(), trashed.end());
  }
  Result<std::vector<std::shared_ptr<ManagedObject>>> save(const ChangeSet& changes, const Writer&, Date,
                                                           const SaveProgress& progress) override {
    if (progress && !progress(0.5)) return Error{"The save was called off."};
    if (!result_) return result_.error();
    commits_.push_back(changes);
    return std::vector<std::shared_ptr<ManagedObject>>();
  }
  Status refresh(ManagedObjectContext&, std::span<const HistoryChange>) override { return {}; }
  Result<bool> hasRepaired(std::string_view name) override { return repaired.contains(std::string(name)); }
  Status noteRepaired(std::string_view name) override {
    repaired.emplace(name);
    return {};
  }
  Status reload(ManagedObjectContext&) override { return {}; }
  Result<std::optional<AttributedString>> richText(const QLSnippet&) override {
    return std::optional<AttributedString>();
  }

  std::set<std::string> repaired;

 private:
  std::vector<ChangeSet>& commits_;
  const Status& result_;
};

}  // namespace quorlo
