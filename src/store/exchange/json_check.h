#pragma once

#include "base/result.h"

#include <string_view>

namespace quorlo {

// Whether a text is JSON by RFC 8259, with an optional byte order mark, that can be read without using far
// more memory than the text itself: at most 32 levels and 10 million values. Refused too are keys that an
// object has twice and numbers beyond a double. Nothing is built. The error is a whole sentence for the user,
// with line and column (characters, from 1).
Status checkJson(std::string_view text);

}  // namespace quorlo
