#pragma once

#include "base/result.h"
#include "text/attributed_string.h"

#include <nlohmann/json_fwd.hpp>

namespace quorlo {

// The one schema behind rich_text_json.h and rich_text_archive.h.

// How bytes stand in the encoded value: base64 in JSON, binary strings in CBOR.
enum class BytesForm { base64, binary };

nlohmann::json encodeRichText(const AttributedString& text, BytesForm form);
Result<AttributedString> decodeRichText(const nlohmann::json& value, BytesForm form);

}  // namespace quorlo
