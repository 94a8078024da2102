#pragma once

#include <string>

namespace quorlo {

class AttributedString;

// The text as a small HTML document in UTF-8, for the pasteboard type text/html. Runs without attributes
// carry no markup, so that they take the style of the place where they are pasted. Line breaks of every
// kind (LF, CR, CR LF, U+0085, U+2028, U+2029) become <br>; spaces that HTML would collapse become
// no-break spaces; pictures become data: URIs. Custom marks, other control characters and U+FFFC
// without a picture leave no trace; lone surrogates become U+FFFD.
std::string toHtml(const AttributedString& text);

}  // namespace quorlo
