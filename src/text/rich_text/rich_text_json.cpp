#include "text/rich_text/rich_text_json.h"

#include "text/rich_text/rich_text_schema.h"

#include <nlohmann/json.hpp>

namespace quorlo {

nlohmann::json toJson(const AttributedString& text) {
  return encodeRichText(text, BytesForm::base64);
}

Result<AttributedString> fromJson(const nlohmann::json& value) {
  return decodeRichText(value, BytesForm::base64);
}

}  // namespace quorlo
