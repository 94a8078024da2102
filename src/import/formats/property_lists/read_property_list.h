#pragma once

#include "base/result.h"
#include "import/formats/property_lists/property_list.h"

#include <string_view>

namespace quorlo {

// The property list that a file holds, in its XML or its binary form. The bytes are checked before the
// library that reads them (libplist) sees any of them, since it recurses with their nesting, expands what is
// shared, and takes what is damaged for empty. Fails on what is damaged, and on what is larger than a file of
// snippets can be; the error names the line of an XML file, the object and byte of a binary one. Any thread.
Result<PropertyList> readPropertyList(std::string_view bytes);

}  // namespace quorlo
