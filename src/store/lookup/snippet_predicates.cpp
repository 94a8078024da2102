#include "store/lookup/snippet_predicates.h"

#include "store/records/folder_types.h"
#include "store/records/ql_snippet.h"

#include <cstdint>

namespace quorlo {

const Predicate& outsideSharedFolders() {
  static const auto predicate = Predicate::any(
      {QLSnippet::kCategory.isNil(),
       QLSnippet::kCategorySourceType.differsFrom(static_cast<std::int64_t>(SourceType::Public))});
  return predicate;
}

const Predicate& liveClause() {
  static const auto predicate =
      Predicate::all({QLSnippet::kDeletionDate.isNil(), outsideSharedFolders()}).inParentheses();
  return predicate;
}

Predicate liveAbbreviation(std::u16string_view abbreviation) {
  return Predicate::all({QLSnippet::kAbbreviation.equals(abbreviation).inParentheses(), liveClause()});
}

}  // namespace quorlo
