#pragma once

#include "store/exchange/library_exchange.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <string>

namespace quorlo {

class JsonReader;

// Readers of the parts of a document; what is wrong is recorded in the reader, `place` names the value.

SnippetExchange readSnippet(JsonReader& reader, const nlohmann::json& value, const std::string& place);
// A title or abbreviation, which has no NUL characters.
std::u16string readName(JsonReader& reader, const nlohmann::json& value, const std::string& place);
std::int64_t readInteger(JsonReader& reader, const nlohmann::json& value, const std::string& place);

}  // namespace quorlo
