#pragma once

#include "base/result.h"
#include "text/attributed_string.h"

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace quorlo {

class QLSnippet;

// A snippet as it is exchanged: dragged, exported, imported.
struct SnippetExchange {
  std::string uuid;  // empty when it has none
  std::u16string title;
  AttributedString text;
  std::int64_t formatted = 0;  // the raw value of a SnippetType
  std::u16string abbreviation;
};

SnippetExchange exchangeForm(const QLSnippet& snippet);

// An object with the keys "uuid", "title", "text", "formatted" and "abbreviation", in this order. The
// text of a snippet without attributes is a string, any other an object as rich_text_json.h describes it.
nlohmann::ordered_json toJson(const SnippetExchange& snippet);

// Only "text" must be there. Without "formatted" a text that is a string is plain text and any other
// formatted. The error names the key at fault and what it may hold.
Result<SnippetExchange> snippetFromJson(const nlohmann::json& value);

}  // namespace quorlo
