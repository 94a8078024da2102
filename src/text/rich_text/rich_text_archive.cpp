#include "text/rich_text/rich_text_archive.h"

#include "text/rich_text/cbor_check.h"
#include "text/rich_text/rich_text_schema.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <string>

namespace quorlo {
namespace {

constexpr std::uint64_t kVersion = 1;

// The schema nests five deep: archive, text, runs, run, image or custom marks.
constexpr std::size_t kMaxDepth = 5;

Error unreadable(const std::string& why) {
  return Error{"The stored text cannot be read: " + why};
}

}  // namespace

std::vector<std::uint8_t> archive(const AttributedString& text) {
  return nlohmann::json::to_cbor({{"version", kVersion}, {"text", encodeRichText(text, BytesForm::binary)}});
}

Result<AttributedString> unarchive(std::span<const std::uint8_t> bytes) {
  if (const auto status = checkCbor(bytes, kMaxDepth); !status) return unreadable(status.error().message);

  constexpr bool kThrow = false;
  const auto value = nlohmann::json::from_cbor(bytes.begin(), bytes.end(), true, kThrow);
  if (value.is_discarded()) return unreadable("It is not CBOR.");
  if (!value.is_object() || !value.contains("version") || !value["version"].is_number_unsigned()) {
    return unreadable("It names no version.");
  }
  if (const auto version = value["version"].get<std::uint64_t>(); version != kVersion) {
    return unreadable(fmt::format("It has version {}, but this program knows version {} only. Update it.",
                                  version, kVersion));
  }
  if (!value.contains("text") || value.size() != 2) return unreadable("It holds other things than a text.");
  auto text = decodeRichText(value["text"], BytesForm::binary);
  if (!text) return unreadable(text.error().message);
  return text;
}

}  // namespace quorlo
