#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorlo {

// What may stand between the tags of a property list's elements, by the rules in the comments of
// http://www.apple.com/DTDs/PropertyList-1.0.dtd. Absent for anything else.

// The character of a reference, as UTF-8: `name` is what stands between "&" and ";".
std::optional<std::string> referencedCharacter(std::string_view name);

// Whether a text can be the content of the element; true for elements of any text.
bool isContentOf(std::string_view element, std::string_view text);

}  // namespace quorlo
