#pragma once

#include "text/attributed_string.h"

class QTextCharFormat;
class QTextDocument;

namespace quorlo {

// A snippet's text as an editable document and back. What the document cannot show (custom marks, the encoded
// bytes of a picture) travels with its characters. Line ends become the line feeds that the document knows.

// Replaces the contents and forgets what could be undone.
void setContents(QTextDocument& document, const AttributedString& text);

AttributedString attributedString(const QTextDocument& document);

// For inserting at a cursor; a picture also needs its bytes in the document, which this puts there. A picture
// that cannot be decoded is shown as an empty frame and kept as it is.
QTextCharFormat charFormat(QTextDocument& document, const TextAttributes& attributes);

}  // namespace quorlo
