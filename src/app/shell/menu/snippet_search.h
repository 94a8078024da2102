#pragma once

#include "app/settings/search_scopes.h"
#include "store/context/entity.h"
#include "store/context/fetch_request.h"
#include "store/records/snippet_type.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

class ManagedObjectContext;
class QLCategory;
class QLSnippet;

// One snippet as the menu lists it.
struct SnippetMenuEntry {
  std::u16string title;             // of at most 26 characters, then "…"
  std::optional<SnippetType> type;  // none when the stored one is unknown
  std::u16string contentString;     // without macro markup; may be long and have many lines
  std::u16string abbreviation;      // empty for none
  ObjectID objectID;

  bool operator==(const SnippetMenuEntry&) const = default;
};

// The snippets of the folders with one title, in the order of the search.
struct SnippetMenuGroup {
  std::u16string title;
  std::vector<SnippetMenuEntry> snippets;  // never empty

  bool operator==(const SnippetMenuGroup&) const = default;
};

// What the menu looks for.
struct SnippetSearch {
  std::u16string searchString;  // empty: everything
  SearchScopes scopes = SearchScopes::all();
  std::shared_ptr<const QLCategory> filteredCategory;  // null: all folders but shared ones
  std::vector<SortDescriptor> sortDescriptors;
};

inline constexpr std::size_t kSnippetMenuLimit = 40;

// The condition of a search. Snippets in the trash never satisfy it. A scope that is no known member is
// logged and left out; without any scope the search string plays no part.
Predicate searchPredicate(const SnippetSearch& search);

// At most kSnippetMenuLimit snippets. A failed fetch is logged and finds nothing.
std::vector<std::shared_ptr<QLSnippet>> findSnippets(const ManagedObjectContext& context,
                                                     const SnippetSearch& search);

// Groups by the title of the folder, in the order of each group's first snippet. Snippets without a folder
// belong to "All Snippets".
std::vector<SnippetMenuGroup> groupByFolder(const std::vector<std::shared_ptr<QLSnippet>>& snippets);

}  // namespace quorlo
