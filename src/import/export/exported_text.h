#pragma once

#include "text/attributed_string.h"

namespace quorlo {

class ExportRun;
class QLSnippet;

// The snippet's text, read for this once. Where its formats cannot be read it is the plain one, with a
// warning.
AttributedString exportedText(const QLSnippet& snippet, ExportRun& run);

}  // namespace quorlo
