#pragma once

#include "base/result.h"

#include <string>
#include <string_view>

namespace quorlo {

// An XML property list (http://www.apple.com/DTDs/PropertyList-1.0.dtd), checked against that document type
// and the limits of property_list.h, and written anew in the plainest form for libplist: without comments and
// declarations, with every text as it reads. libplist takes quadratic time for the references of a text
// ("&amp;"), ends a text at a NUL, and reads damaged numbers, dates and data as empty ones. Entity
// declarations are refused. Errors name the line. Linear in the text.
Result<std::string> prepareXmlPropertyList(std::string_view bytes);

}  // namespace quorlo
