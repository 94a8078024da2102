#pragma once

#include "platform/pasteboard.h"

namespace quorlo {

class AttributedString;
enum class SnippetType;

// What a piece of a snippet offers on the pasteboard. Formatted text comes as HTML with its plain form
// beside it; plain text and code come as plain text alone, so that they take the style of the place
// where they land; an image snippet offers the picture itself.
PasteboardItem pieceContents(const AttributedString& piece, SnippetType type);

// The plain text of an item, if it has any.
PasteboardItem onlyText(const PasteboardItem& item);

}  // namespace quorlo
