#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorlo {

// The markers of "textexpander" files that ask the user, as macros. `arguments` is what stands behind the
// marker's name and its colon, up to the closing percent sign.

// "fill", "filltext", "fillarea" (a text field) and "fillpopup" (a list); absent for any other name. Sizes of
// fields are left out.
std::optional<std::u16string> fillInMacro(std::u16string_view name, std::u16string_view arguments);

// A part of the text that the user may leave out ("fillpart"), as a list of two entries: the part and
// nothing.
std::u16string optionalPartMacro(std::u16string_view arguments, std::u16string_view part);

}  // namespace quorlo
