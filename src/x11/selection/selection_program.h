#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorlo {

class XConnection;

// The name of the program that owns a selection, "another program" where the server does not tell; absent
// when nobody does. A few round trips.
std::optional<std::string> programOwningSelection(const XConnection& x, std::string_view selection);

}  // namespace quorlo
