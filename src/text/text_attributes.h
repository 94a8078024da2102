#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

// sRGB, not premultiplied; alpha 255 is opaque.
struct Color {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
  std::uint8_t alpha = 255;

  bool operator==(const Color&) const = default;
};

// A picture that stands in the text in place of one U+FFFC character. The encoded bytes are immutable
// and shared by every copy.
struct ImageAttachment {
  std::shared_ptr<const std::vector<std::uint8_t>> bytes;  // null counts as no bytes
  std::string mediaType;                                   // such as "image/png"

  // By content.
  bool operator==(const ImageAttachment& other) const;
};

// The look of a run of characters. What is absent is left to the place where the text lands, so that
// text without attributes is plain text. Strings are UTF-8.
struct TextAttributes {
  std::optional<std::string> fontFamily = {};
  std::optional<double> fontSizePoints = {};  // finite, above 0
  bool bold = false;
  bool italic = false;
  bool underline = false;
  bool strikethrough = false;
  std::optional<Color> foreground = {};
  std::optional<Color> background = {};
  std::optional<std::string> link = {};  // a URL
  std::optional<ImageAttachment> image = {};

  // Marks that travel with a run and have no look of their own, by name.
  std::map<std::string, std::string> custom = {};

  bool isPlain() const { return *this == TextAttributes{}; }
  bool operator==(const TextAttributes&) const = default;
};

}  // namespace quorlo
