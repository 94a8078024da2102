#include "engine/snippet_preparation.h"

#include <utility>

namespace quorlo {

void WholeTextPreparation::prepare(AttributedString content, const QLSnippet&, Completion completion) {
  PreparedSnippet prepared;
  prepared.pieces.push_back(content);
  prepared.snippetText = std::move(content);
  completion(std::move(prepared));
}

}  // namespace quorlo
