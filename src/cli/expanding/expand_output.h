#pragma once

#include "macros/prepared_snippet.h"
#include "text/attributed_string.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace quorlo {

// What a text comes to, for scripts and people (docs/formats.md has the JSON form).

// The pieces as one text: the keys return, tab and space as characters, all others left out.
struct ExpandedText {
  AttributedString text;
  std::vector<std::string> leftOut;  // each kind of key once, in the order of the text
};
ExpandedText inOneText(const PreparedSnippet& prepared);

// Pictures have no place in plain text.
std::string plainForm(const AttributedString& text);

// Texts, keys and the cursor, in order; a text that has attributes comes as HTML, too.
nlohmann::ordered_json piecesJson(const PreparedSnippet& prepared);

}  // namespace quorlo
