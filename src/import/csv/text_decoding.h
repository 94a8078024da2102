#pragma once

#include "base/result.h"

#include <string>
#include <string_view>

namespace quorlo {

class WorkProgress;

enum class TextEncoding { utf8, utf16LittleEndian, utf16BigEndian, windows1252 };

struct DecodedText {
  std::u16string text;  // well-formed, without byte order mark and without NUL characters
  TextEncoding encoding = TextEncoding::utf8;
};

// The text of a file: UTF-8 or UTF-16 by its byte order mark; without one UTF-8 where the bytes are that, and
// Windows-1252 otherwise. A text whose line ends are carriage returns alone gets line feeds. Bytes that do
// not keep to what the byte order mark says, and NUL characters, are errors: part of a sentence, localized,
// with the line. A cancelled call is an error too. Any thread.
Result<DecodedText> decodeText(std::string_view bytes, WorkProgress& progress);

}  // namespace quorlo
