#pragma once

#include <string_view>

namespace quorlo {

class EventPoster;

// Types a piece of a snippet, line breaks and tabs included. False when the keyboard layout lacks one of its
// characters: then nothing is typed.
bool typePiece(EventPoster& poster, std::u16string_view text);

}  // namespace quorlo
