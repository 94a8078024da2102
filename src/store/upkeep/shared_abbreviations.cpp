#include "store/upkeep/shared_abbreviations.h"

#include "store/context/logged_fetch.h"
#include "store/lookup/snippet_predicates.h"
#include "store/records/ql_snippet.h"

#include <map>
#include <string>

namespace quorlo {

std::vector<SharedAbbreviation> sharedAbbreviations(const ManagedObjectContext& context) {
  const auto snippets = loggedFetch<QLSnippet>(
      context,
      {.predicate = Predicate::all({QLSnippet::kAbbreviation.isNotNil().inParentheses(), liveClause()})},
      "ERROR: #shA5Wq; Couldn't fetch Snippets. ");
  std::map<std::u16string, std::vector<std::shared_ptr<QLSnippet>>> holders;
  for (const auto& each : snippets) holders[each->abbreviation()].push_back(each);
  std::vector<SharedAbbreviation> shared;
  for (auto& [abbreviation, several] : holders) {
    if (several.size() < 2) continue;
    auto oldest = context.liveSnippet(abbreviation).value();
    std::erase(several, oldest);
    shared.push_back({std::move(oldest), std::move(several)});
  }
  return shared;
}

}  // namespace quorlo
