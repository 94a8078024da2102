#include "store/context/revival.h"

#include "store/records/ql_app.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"

#include <algorithm>
#include <array>

namespace quorlo {
namespace {

constexpr std::array<const Property*, 16> kContent{&QLSnippet::kTitle,
                                                   &QLSnippet::kAbbreviation,
                                                   &QLSnippet::kText,
                                                   &QLSnippet::kPlainText,
                                                   &QLSnippet::kFormatted,
                                                   &QLSnippet::kAllowedApps,
                                                   &QLSnippet::kBlockedSnippets,
                                                   &QLCategory::kTitle,
                                                   &QLCategory::kType,
                                                   &QLCategory::kShortcutKeyCode,
                                                   &QLCategory::kShortcutModifierFlags,
                                                   &QLCategory::kExpansionBehavior,
                                                   &QLCategory::kAllowedApps,
                                                   &QLCategory::kBlockedApps,
                                                   &QLApp::kBundleID,
                                                   &QLApp::kType};

}  // namespace

bool isContent(const Property& property) {
  return std::ranges::find(kContent, &property) != kContent.end();
}

bool revives(const ManagedObject& record) {
  return std::ranges::any_of(record.changedProperties(), [&record](const Property* each) {
    if (each == &QLSnippet::kDeletionDate) return !static_cast<const QLSnippet&>(record).deletionDate();
    return isContent(*each);
  });
}

}  // namespace quorlo
