#include "engine/expansion_rules.h"

#include "platform/workspace.h"
#include "store/records/folder_types.h"
#include "store/records/ql_app.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"

#include <algorithm>
#include <string>

namespace quorlo {
namespace {

template <class Applications>
bool contains(const Applications& applications, const std::string& bundleIdentifier) {
  return std::ranges::any_of(applications,
                             [&](const auto& each) { return each->bundleID() == bundleIdentifier; });
}

}  // namespace

bool folderAllowsExpansion(const QLSnippet& snippet, const RunningApplication* target) {
  if (target == nullptr || !target->bundleIdentifier) return true;
  const auto folder = snippet.category();
  if (!folder) return true;
  const auto& identifier = *target->bundleIdentifier;
  switch (expansionBehavior(folder->expansionBehavior()).value_or(ExpansionBehavior::Disabled)) {
    case ExpansionBehavior::AllApplications:
      return true;
    case ExpansionBehavior::AllApplicationsWithExeption:
      return !contains(folder->blockedApps(), identifier);
    case ExpansionBehavior::OnlyTheseApplications:
      return contains(folder->allowedApps(), identifier);
    case ExpansionBehavior::Disabled:
      return false;
  }
  return false;
}

}  // namespace quorlo
