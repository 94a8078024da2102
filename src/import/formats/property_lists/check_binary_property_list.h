#pragma once

#include "base/result.h"

#include <string_view>

namespace quorlo {

// Whether the bytes are one whole binary property list within the limits of property_list.h, with all that it
// shares written out: objects refer to each other by number, and a file of a few hundred bytes can stand for
// more than any memory holds, or for itself. Linear in the file.
Status checkBinaryPropertyList(std::string_view bytes);

}  // namespace quorlo
