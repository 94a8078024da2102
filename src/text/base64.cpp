#include "text/base64.h"

#include <array>
#include <cstddef>

namespace quorlo {
namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t kNotInAlphabet = 0xFF;

constexpr auto kValues = [] {
  std::array<std::uint8_t, 256> values{};
  values.fill(kNotInAlphabet);
  for (std::size_t i = 0; i < kAlphabet.size(); ++i) {
    values[static_cast<unsigned char>(kAlphabet[i])] = static_cast<std::uint8_t>(i);
  }
  return values;
}();

}  // namespace

std::string toBase64(std::span<const std::uint8_t> bytes) {
  std::string out;
  out.reserve((bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const auto byteAt = [&](std::size_t k) { return k < bytes.size() ? std::uint32_t{bytes[k]} : 0U; };
    const auto group = byteAt(i) << 16 | byteAt(i + 1) << 8 | byteAt(i + 2);
    out += kAlphabet[group >> 18];
    out += kAlphabet[group >> 12 & 63];
    out += i + 1 < bytes.size() ? kAlphabet[group >> 6 & 63] : '=';
    out += i + 2 < bytes.size() ? kAlphabet[group & 63] : '=';
  }
  return out;
}

Result<std::vector<std::uint8_t>> fromBase64(std::string_view text) {
  if (text.size() % 4 != 0) return Error{"The base64 text is cut off."};
  const auto padding = text.size() - std::min(text.size(), text.find_last_not_of('=') + 1);
  if (padding > 2) return Error{"The base64 text has too much padding."};

  std::vector<std::uint8_t> out;
  out.reserve(text.size() / 4 * 3);
  const auto dataSize = text.size() - padding;
  std::uint32_t bits = 0;
  for (std::size_t i = 0; i < dataSize; ++i) {
    const auto value = kValues[static_cast<unsigned char>(text[i])];
    if (value == kNotInAlphabet) {
      return Error{"The base64 text has a wrong character at byte " + std::to_string(i) + "."};
    }
    bits = bits << 6 | value;
    // Behind the first character of a group each further one completes a byte.
    const auto place = i % 4;
    if (place != 0) out.push_back(static_cast<std::uint8_t>(bits >> (6 - 2 * place)));
  }
  const auto spareBits = 2 * padding;
  if ((bits & ((1U << spareBits) - 1)) != 0) return Error{"The base64 text ends in stray bits."};
  return out;
}

}  // namespace quorlo
