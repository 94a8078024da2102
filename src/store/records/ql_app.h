#pragma once

#include "store/context/managed_object.h"
#include "store/context/predicate.h"
#include "store/context/record_set.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

class QLCategory;
class QLSnippet;

// One application named in a rule.
class QLApp final : public ManagedObject {
 public:
  static constexpr Entity kEntity = Entity::app;
  static const Attribute<std::string_view> kBundleID;
  static const Attribute<std::int64_t> kType;
  static const Property kAllowedSnippets;
  static const Property kBlockedApps;

  QLApp() : ManagedObject(kEntity) {}

  // UTF-8; empty when nothing is stored, and then no application matches.
  const std::string& bundleID() const { return bundleID_; }
  void setBundleID(std::string bundleID);

  // The raw value of an AppType.
  std::int64_t type() const { return type_; }
  void setType(std::int64_t type);

  // The inverse of QLSnippet::allowedApps.
  const RecordSet<QLSnippet>& allowedSnippets() const { return allowedSnippets_; }
  // The inverse of QLSnippet::blockedSnippets. The name is the stored one.
  const RecordSet<QLSnippet>& blockedApps() const { return blockedApps_; }

 private:
  friend class QLSnippet;
  friend class QLCategory;
  void enterIndexes(ManagedObjectContext& context) override;
  void prepareForDeletion() override;
  void dropRelationships() override;
  std::vector<Referrer> referrers() const override;

  std::string bundleID_;
  std::int64_t type_ = 0;
  RecordSet<QLSnippet> allowedSnippets_;
  RecordSet<QLSnippet> blockedApps_;
  // The folders that name the application, so that its deletion reaches them.
  RecordSet<QLCategory> allowingCategories_;
  RecordSet<QLCategory> blockingCategories_;
};

}  // namespace quorlo
