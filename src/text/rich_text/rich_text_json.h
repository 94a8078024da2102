#pragma once

#include "base/result.h"
#include "text/attributed_string.h"

#include <nlohmann/json_fwd.hpp>

namespace quorlo {

// Attributed text as a JSON value. A plain text is a JSON string. Otherwise:
//
//   {"string": "Hello 🙂",
//    "runs": [{"location": 0, "length": 5, "bold": true, "color": "#cc0000ff"}]}
//
// "location" and "length" count UTF-16 units; runs are ascending and apart, and what lies between them is
// plain. A run's attributes, each optional: "font" (family), "size" (points), "bold", "italic",
// "underline", "strikethrough" (booleans), "color", "background" ("#rrggbb" or "#rrggbbaa"), "link",
// "image" ({"type": media type, "data": base64}), "custom" (an object of strings).
//
// JSON strings cannot hold a lone surrogate. A text with one is written with the key "utf16" in place of
// "string": the base64 of its code units, little endian. So every text survives the round trip. In
// attributes, ill-formed UTF-8 is written as U+FFFD and a size that is not above 0 is left out.
nlohmann::json toJson(const AttributedString& text);

// Accepts exactly the form above; an unknown key, a value of the wrong type, a run that is empty, out of
// order or out of range is an error that names the place.
Result<AttributedString> fromJson(const nlohmann::json& value);

}  // namespace quorlo
