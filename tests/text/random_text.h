#pragma once

#include "text/attributed_string.h"

#include <random>
#include <string>

namespace quorlo {

using Random = std::mt19937;

// Below `bound`.
std::size_t pick(Random& random, std::size_t bound);

// Up to `pieces` pieces that join each other in every way the boundary rules know: combining marks,
// joined pictures, flags, jamo, CR LF, prepended marks, and surrogates with and without their halves.
std::u16string randomText(Random& random, std::size_t pieces);

TextAttributes randomAttributes(Random& random);

// Random text in runs of random attributes.
AttributedString randomAttributedString(Random& random);

}  // namespace quorlo
