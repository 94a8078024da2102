#pragma once

#include "base/result.h"

#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// Lists of texts are stored in one value, as a JSON array of strings.
Result<std::vector<std::string>> decodeJsonList(std::string_view json);

// "[]" for a list that cannot be encoded, that is, one with ill-formed UTF-8 in it.
std::string encodeJsonList(const std::vector<std::string>& list);

}  // namespace quorlo
