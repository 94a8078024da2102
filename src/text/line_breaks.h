#pragma once

#include "text/attributed_string.h"

namespace quorlo {

// Every CR LF and every CR becomes a line feed, as Linux applications expect it. Linear.
AttributedString withLineFeeds(AttributedString text);

}  // namespace quorlo
