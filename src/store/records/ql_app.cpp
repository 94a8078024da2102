#include "store/records/ql_app.h"

#include "store/context/managed_object_context.h"
#include "store/context/relationship.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"

#include <utility>

namespace quorlo {
namespace {

const QLApp& app(const ManagedObject& record) {
  return static_cast<const QLApp&>(record);
}

ValueView unread(const ManagedObject&) {
  return {};
}

}  // namespace

constinit const Attribute<std::string_view> QLApp::kBundleID{
    {kEntity, "bundleID", [](const ManagedObject& record) -> ValueView {
       const std::string_view value = app(record).bundleID_;
       return value.empty() ? ValueView() : value;
     }}};
constinit const Attribute<std::int64_t> QLApp::kType{
    {kEntity, "type", [](const ManagedObject& record) -> ValueView { return app(record).type_; }}};
constinit const Property QLApp::kAllowedSnippets{
    .entity = kEntity, .name = "allowedSnippets", .read = unread, .isInverse = true};
constinit const Property QLApp::kBlockedApps{
    .entity = kEntity, .name = "blockedApps", .read = unread, .isInverse = true};

void QLApp::setBundleID(std::string bundleID) {
  if (bundleID == bundleID_) return;
  if (auto* context = managedObjectContext()) {
    context->index_.removeApp(bundleID_, type_);
    context->index_.addApp(bundleID, type_);
  }
  bundleID_ = std::move(bundleID);
  didChange(kBundleID);
}

void QLApp::setType(std::int64_t type) {
  if (type == type_) return;
  if (auto* context = managedObjectContext()) {
    context->index_.removeApp(bundleID_, type_);
    context->index_.addApp(bundleID_, type);
  }
  type_ = type;
  didChange(kType);
}

void QLApp::enterIndexes(ManagedObjectContext& context) {
  context.index_.addApp(bundleID_, type_);
}

void QLApp::prepareForDeletion() {
  managedObjectContext()->index_.removeApp(bundleID_, type_);
  for (auto* each : Relationship::copy(allowedSnippets_)) each->removeAllowedApp(*this);
  for (auto* each : Relationship::copy(blockedApps_)) each->removeBlockedSnippet(*this);
  for (auto* each : Relationship::copy(allowingCategories_)) each->removeAllowedApp(*this);
  for (auto* each : Relationship::copy(blockingCategories_)) each->removeBlockedApp(*this);
}

std::vector<ManagedObject::Referrer> QLApp::referrers() const {
  std::vector<Referrer> found;
  for (auto* each : allowedSnippets_) found.push_back({*each, QLSnippet::kAllowedApps});
  for (auto* each : blockedApps_) found.push_back({*each, QLSnippet::kBlockedSnippets});
  for (auto* each : allowingCategories_) found.push_back({*each, QLCategory::kAllowedApps});
  for (auto* each : blockingCategories_) found.push_back({*each, QLCategory::kBlockedApps});
  return found;
}

void QLApp::dropRelationships() {
  allowedSnippets_.clear();
  blockedApps_.clear();
  allowingCategories_.clear();
  blockingCategories_.clear();
}

}  // namespace quorlo
