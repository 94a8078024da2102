#pragma once

#include "platform/pasteboard.h"

namespace quorlo {

class QLSnippet;
class QLSnippetMacroInterpreter;

// A snippet for the user to paste: its macros evaluated, fields at their defaults, without what only keys
// can do.
PasteboardContents copiedSnippet(const QLSnippet& snippet, const QLSnippetMacroInterpreter& interpreter);

}  // namespace quorlo
