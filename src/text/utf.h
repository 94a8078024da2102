#pragma once

#include "base/result.h"

#include <string>
#include <string_view>

namespace quorlo {

// Snippet text is UTF-16 inside the program and UTF-8 at its edges (files, logs, the database).

// Lossy only for ill-formed text: each lone surrogate becomes U+FFFD.
std::string toUtf8(std::u16string_view text);

// Lossy only for ill-formed text: each maximal ill-formed subsequence becomes one U+FFFD (Unicode,
// section 3.9, "U+FFFD substitution of maximal subparts").
std::u16string toUtf16(std::string_view text);

// Fails on ill-formed UTF-8, overlong forms and encoded surrogates included; the error names the byte
// offset of the first ill-formed sequence.
Result<std::u16string> toUtf16Strict(std::string_view text);

// Every surrogate stands in a pair, so that toUtf8 loses nothing.
bool isWellFormed(std::u16string_view text);

}  // namespace quorlo
