#pragma once

#include "macros/prepared_snippet.h"

namespace quorlo {

struct EvaluatedText;

// Cuts a text at the keys to press. A key at the start, or one right behind another, follows an empty
// piece; behind a key at the end comes none. There is always at least one piece.
PreparedSnippet cutPieces(EvaluatedText evaluated);

}  // namespace quorlo
