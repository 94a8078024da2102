#include "macros/cut_pieces.h"

#include "macros/evaluate_macros.h"

#include <utility>

namespace quorlo {

PreparedSnippet cutPieces(EvaluatedText evaluated) {
  PreparedSnippet prepared;
  const auto& text = evaluated.text;
  std::size_t start = 0;
  for (const auto& key : evaluated.keys) {
    prepared.pieces.push_back(text.slice({start, key.range.location - start}));
    start = key.range.location;
  }
  if (prepared.pieces.empty() || start < text.size()) {
    prepared.pieces.push_back(text.slice({start, text.size() - start}));
  }
  prepared.snippetText = std::move(evaluated.text);
  prepared.keys = std::move(evaluated.keys);
  prepared.cursorRange = evaluated.cursorRange;
  prepared.cursorPiece = evaluated.keysBeforeCursor;
  return prepared;
}

}  // namespace quorlo
