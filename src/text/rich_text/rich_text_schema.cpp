#include "text/rich_text/rich_text_schema.h"

#include "text/base64.h"
#include "text/json_reader.h"
#include "text/utf.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quorlo {
namespace {

using nlohmann::json;
using Bytes = std::vector<std::uint8_t>;

json encodeBytes(Bytes bytes, BytesForm form) {
  if (form == BytesForm::binary) return json::binary(std::move(bytes));
  return toBase64(bytes);
}

Bytes decodeBytes(const json& value, BytesForm form, JsonReader& reader, const std::string& place) {
  if (form == BytesForm::base64) return reader.valueOr(fromBase64(reader.utf8(value, place)), place);
  if (value.is_binary()) return value.get_binary();
  reader.fail(place, "is not a binary string.");
  return {};
}

// A JSON string has to be well-formed.
std::string wellFormed(const std::string& text) {
  return toUtf8(toUtf16(text));
}

Bytes toLittleEndian(std::u16string_view text) {
  Bytes bytes;
  bytes.reserve(text.size() * 2);
  for (const auto unit : text) {
    bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
    bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
  }
  return bytes;
}

std::u16string fromLittleEndian(const Bytes& bytes, JsonReader& reader, const std::string& place) {
  if (bytes.size() % 2 != 0) reader.fail(place, "holds half a code unit.");
  std::u16string text;
  text.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    text += static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8);
  }
  return text;
}

std::string encodeColor(const Color& color) {
  return fmt::format("#{:02x}{:02x}{:02x}{:02x}", color.red, color.green, color.blue, color.alpha);
}

Color decodeColor(const json& value, JsonReader& reader, const std::string& place) {
  auto text = reader.utf8(value, place);
  if (text.size() == 7) text += "ff";
  if (text.size() != 9 || text[0] != '#' ||
      text.find_first_not_of("0123456789abcdefABCDEF", 1) != text.npos) {
    reader.fail(place, "is not a colour of the form #rrggbb or #rrggbbaa.");
    return {};
  }
  const auto rgba = std::stoul(text.substr(1), nullptr, 16);
  const auto byteAt = [rgba](int shift) { return static_cast<std::uint8_t>(rgba >> shift & 0xFF); };
  return {byteAt(24), byteAt(16), byteAt(8), byteAt(0)};
}

json encodeAttributes(const TextAttributes& attributes, BytesForm form) {
  json value = json::object();
  if (attributes.fontFamily) value["font"] = wellFormed(*attributes.fontFamily);
  if (const auto& size = attributes.fontSizePoints; size && std::isfinite(*size) && *size > 0) {
    value["size"] = *size;
  }
  if (attributes.bold) value["bold"] = true;
  if (attributes.italic) value["italic"] = true;
  if (attributes.underline) value["underline"] = true;
  if (attributes.strikethrough) value["strikethrough"] = true;
  if (attributes.foreground) value["color"] = encodeColor(*attributes.foreground);
  if (attributes.background) value["background"] = encodeColor(*attributes.background);
  if (attributes.link) value["link"] = wellFormed(*attributes.link);
  if (const auto& image = attributes.image) {
    value["image"] = {{"type", wellFormed(image->mediaType)},
                      {"data", encodeBytes(image->bytes ? *image->bytes : Bytes(), form)}};
  }
  for (const auto& [name, mark] : attributes.custom) value["custom"][wellFormed(name)] = wellFormed(mark);
  return value;
}

ImageAttachment decodeImage(const json& value, BytesForm form, JsonReader& reader, const std::string& place) {
  ImageAttachment image;
  reader.members(value, place, [&](const std::string& key, const json& member, const std::string& at) {
    if (key == "type") {
      image.mediaType = reader.utf8(member, at);
    } else if (key == "data") {
      image.bytes = std::make_shared<const Bytes>(decodeBytes(member, form, reader, at));
    } else {
      reader.fail(at, "is not known.");
    }
  });
  if (!image.bytes) reader.fail(place, "has no data.");
  return image;
}

struct DecodedRun {
  TextRange range;
  TextAttributes attributes;
};

DecodedRun decodeRun(const json& value, BytesForm form, JsonReader& reader, const std::string& place) {
  DecodedRun run;
  auto& range = run.range;
  auto& attributes = run.attributes;
  reader.members(value, place, [&](const std::string& key, const json& member, const std::string& at) {
    if (key == "location") {
      range.location = reader.count(member, at);
    } else if (key == "length") {
      range.length = reader.count(member, at);
    } else if (key == "font") {
      attributes.fontFamily = reader.utf8(member, at);
    } else if (key == "size") {
      attributes.fontSizePoints = reader.positiveNumber(member, at);
    } else if (key == "bold") {
      attributes.bold = reader.boolean(member, at);
    } else if (key == "italic") {
      attributes.italic = reader.boolean(member, at);
    } else if (key == "underline") {
      attributes.underline = reader.boolean(member, at);
    } else if (key == "strikethrough") {
      attributes.strikethrough = reader.boolean(member, at);
    } else if (key == "color") {
      attributes.foreground = decodeColor(member, reader, at);
    } else if (key == "background") {
      attributes.background = decodeColor(member, reader, at);
    } else if (key == "link") {
      attributes.link = reader.utf8(member, at);
    } else if (key == "image") {
      attributes.image = decodeImage(member, form, reader, at);
    } else if (key == "custom") {
      reader.members(member, at, [&](const std::string& name, const json& mark, const std::string& markAt) {
        attributes.custom[name] = reader.utf8(mark, markAt);
      });
    } else {
      reader.fail(at, "is not known.");
    }
  });
  return run;
}

AttributedString decodeRuns(const std::u16string& text, const json& runs, BytesForm form,
                            JsonReader& reader) {
  AttributedString result;
  if (!runs.is_array()) reader.fail("runs", "is not an array.");
  for (std::size_t i = 0; runs.is_array() && i < runs.size() && !reader.error(); ++i) {
    const auto place = fmt::format("runs[{}]", i);
    const auto [range, attributes] = decodeRun(runs[i], form, reader, place);
    if (range.length == 0) {
      reader.fail(place, "is empty.");
    } else if (range.location < result.size()) {
      reader.fail(place, "begins before the end of the run before it.");
    } else if (range.location > text.size() || range.length > text.size() - range.location) {
      reader.fail(place, fmt::format("reaches beyond the text, which has {} UTF-16 units.", text.size()));
    } else {
      const std::u16string_view whole(text);
      result.append(whole.substr(result.size(), range.location - result.size()));
      result.append(whole.substr(range.location, range.length), attributes);
    }
  }
  result.append(std::u16string_view(text).substr(result.size()));
  return result;
}

AttributedString decodeObject(const json& value, BytesForm form, JsonReader& reader) {
  std::u16string text;
  const json* runs = nullptr;
  int texts = 0;
  reader.members(value, {}, [&](const std::string& key, const json& member, const std::string& at) {
    if (key == "string") {
      text = reader.utf16(member, at);
      ++texts;
    } else if (key == "utf16") {
      text = fromLittleEndian(decodeBytes(member, form, reader, at), reader, at);
      ++texts;
    } else if (key == "runs") {
      runs = &member;
    } else {
      reader.fail(at, "is not known.");
    }
  });
  if (texts != 1) reader.fail("string", "is missing, or \"utf16\" stands beside it.");
  return runs ? decodeRuns(text, *runs, form, reader) : AttributedString(std::move(text));
}

}  // namespace

json encodeRichText(const AttributedString& text, BytesForm form) {
  const bool wellFormedText = isWellFormed(text.string());
  if (text.isPlain() && wellFormedText) return toUtf8(text.string());

  json value = json::object();
  if (wellFormedText) {
    value["string"] = toUtf8(text.string());
  } else {
    value["utf16"] = encodeBytes(toLittleEndian(text.string()), form);
  }
  text.forEachRun([&](const AttributedString::Run& run) {
    if (run.attributes.isPlain()) return;
    auto encoded = encodeAttributes(run.attributes, form);
    if (encoded.empty()) return;  // nothing but a size that is none
    encoded["location"] = run.range.location;
    encoded["length"] = run.range.length;
    value["runs"].push_back(std::move(encoded));
  });
  return value;
}

Result<AttributedString> decodeRichText(const json& value, BytesForm form) {
  if (!value.is_string() && !value.is_object()) {
    return Error{"A text is neither a string nor an object with the key \"string\"."};
  }
  JsonReader reader;
  auto text =
      value.is_string() ? AttributedString(reader.utf16(value, "text")) : decodeObject(value, form, reader);
  if (reader.error()) return *reader.error();
  return text;
}

}  // namespace quorlo
