#include "app/shell/menu/snippet_search.h"

#include "base/localized.h"
#include "base/log.h"
#include "store/context/managed_object_context.h"
#include "store/lookup/snippet_predicates.h"
#include "store/records/folder_types.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "text/graphemes.h"

#include <algorithm>
#include <utility>

namespace quorlo {
namespace {

constexpr std::size_t kLongestEntryTitle = 26;  // user-perceived characters

// A title of exactly the greatest length is given the ellipsis, too.
std::u16string entryTitle(const std::u16string& title) {
  const auto starts = graphemeStarts(title);
  if (starts.size() < kLongestEntryTitle) return title;
  const auto end = starts.size() == kLongestEntryTitle ? title.size() : starts[kLongestEntryTitle];
  return title.substr(0, end) + u"…";
}

// A built-in folder holds no snippets of its own but shows those of others.
Predicate snippetsOf(const QLCategory& folder) {
  const auto type = categoryType(folder.type());
  const bool isBuiltIn = type && builtInTitle(*type);
  return isBuiltIn ? folder.predicate() : QLSnippet::kCategory.equals(&folder);
}

Predicate baseCondition(const QLCategory* folder) {
  if (folder == nullptr) return liveClause();
  return Predicate::all({snippetsOf(*folder), QLSnippet::kDeletionDate.isNil()});
}

std::optional<Predicate> scopeCondition(SearchScopes scope, std::u16string_view searchString) {
  if (scope == kTitleScope) return QLSnippet::kTitle.contains(searchString);
  if (scope == kAbbreviationScope) return QLSnippet::kAbbreviation.contains(searchString);
  if (scope == kTextScope) return QLSnippet::kPlainText.contains(searchString);
  logError("ERROR: #rhjgkj - " + scope.description());
  return std::nullopt;
}

// The members of the set in the order of their bits, unknown ones included.
std::vector<SearchScopes> membersOf(SearchScopes scopes) {
  std::vector<SearchScopes> members;
  for (auto rest = static_cast<std::uint64_t>(scopes.rawValue()); rest != 0; rest &= rest - 1) {
    members.emplace_back(static_cast<SearchScopes::RawValue>(rest & (~rest + 1)));
  }
  return members;
}

SnippetMenuEntry entry(const QLSnippet& snippet) {
  return {entryTitle(snippet.displayTitle()), snippet.type(), snippet.plainTextWithoutMacros(),
          snippet.abbreviation(), snippet.objectID()};
}

}  // namespace

Predicate searchPredicate(const SnippetSearch& search) {
  const auto base = baseCondition(search.filteredCategory.get());
  if (search.searchString.empty()) return base;
  std::vector<Predicate> conditions;
  for (const auto scope : membersOf(search.scopes)) {
    if (auto condition = scopeCondition(scope, search.searchString)) {
      conditions.push_back(std::move(*condition));
    }
  }
  if (conditions.empty()) return base;
  return Predicate::all({base, Predicate::any(std::move(conditions))});
}

std::vector<std::shared_ptr<QLSnippet>> findSnippets(const ManagedObjectContext& context,
                                                     const SnippetSearch& search) {
  auto found = context.fetch<QLSnippet>({.predicate = searchPredicate(search),
                                         .sortDescriptors = search.sortDescriptors,
                                         .fetchLimit = kSnippetMenuLimit});
  if (found) return std::move(found).value();
  logWarning("WARNING: #ejefff20 - " + found.error().message);
  return {};
}

std::vector<SnippetMenuGroup> groupByFolder(const std::vector<std::shared_ptr<QLSnippet>>& snippets) {
  std::vector<SnippetMenuGroup> groups;
  for (const auto& snippet : snippets) {
    const auto folder = snippet->category();
    const auto title = folder ? folder->title() : localized(u"All Snippets");
    auto group = std::ranges::find(groups, title, &SnippetMenuGroup::title);
    if (group == groups.end()) group = groups.insert(groups.end(), SnippetMenuGroup{title, {}});
    group->snippets.push_back(entry(*snippet));
  }
  return groups;
}

}  // namespace quorlo
