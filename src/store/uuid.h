#pragma once

#include <string>
#include <string_view>

namespace quorlo {

// UUIDs by RFC 9562 in upper-case canonical form. Any thread.
std::string randomUuid();  // version 4

// The same for the same bytes, everywhere and always (version 5, in a name space of this program).
std::string uuidForContent(std::string_view bytes);

}  // namespace quorlo
