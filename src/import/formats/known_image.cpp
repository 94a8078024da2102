#include "import/formats/known_image.h"

#include "text/text_range.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <string>

namespace quorlo {
namespace {

constexpr char16_t kObjectCharacter = 0xFFFC;

struct Signature {
  std::string_view mediaType;
  std::size_t offset;
  std::string_view bytes;
};

// Of the formats' own descriptions: RFC 2083, ITU-T T.81, GIF89a, TIFF 6.0, RFC 9649.
constexpr std::array kSignatures{
    Signature{"image/png", 0, {"\x89PNG\r\n\x1A\n", 8}},
    Signature{"image/jpeg", 0, "\xFF\xD8\xFF"},
    Signature{"image/gif", 0, "GIF87a"},
    Signature{"image/gif", 0, "GIF89a"},
    Signature{"image/tiff", 0, {"II*\0", 4}},
    Signature{"image/tiff", 0, {"MM\0*", 4}},
    Signature{"image/webp", 8, "WEBPVP8"},
};

bool matches(std::span<const std::uint8_t> bytes, const Signature& signature) {
  if (bytes.size() < signature.offset + signature.bytes.size()) return false;
  return std::ranges::equal(bytes.subspan(signature.offset, signature.bytes.size()), signature.bytes, {}, {},
                            [](char each) { return static_cast<std::uint8_t>(each); });
}

}  // namespace

std::string_view imageMediaType(std::span<const std::uint8_t> bytes) {
  const auto* const found =
      std::ranges::find_if(kSignatures, [&](const Signature& each) { return matches(bytes, each); });
  return found == kSignatures.end() ? std::string_view() : found->mediaType;
}

void placePicture(ImportedSnippet& snippet, const std::vector<std::uint8_t>& bytes,
                  std::string_view mediaType) {
  TextAttributes attributes;
  attributes.image =
      ImageAttachment{std::make_shared<const std::vector<std::uint8_t>>(bytes), std::string(mediaType)};
  auto& text = snippet.text;
  const auto place = std::min(text.string().find(kObjectCharacter), text.size());
  const TextRange placeholder{place, place < text.size() ? std::size_t{1} : std::size_t{0}};
  text.replace(placeholder, AttributedString(std::u16string(1, kObjectCharacter), std::move(attributes)));
  snippet.type = text.size() == 1 ? SnippetType::image : SnippetType::formatted;
}

}  // namespace quorlo
