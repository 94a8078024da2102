#include "text/utf.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <cstddef>
#include <cstdint>

namespace quorlo {
namespace {

constexpr UChar32 kReplacementCharacter = 0xFFFD;

void appendUtf8(std::string& out, UChar32 c) {
  std::uint8_t bytes[U8_MAX_LENGTH];
  std::size_t length = 0;
  U8_APPEND_UNSAFE(bytes, length, c);
  out.append(reinterpret_cast<const char*>(bytes), length);
}

void appendUtf16(std::u16string& out, UChar32 c) {
  if (U_IS_BMP(c)) {
    out += static_cast<char16_t>(c);
  } else {
    out += static_cast<char16_t>(U16_LEAD(c));
    out += static_cast<char16_t>(U16_TRAIL(c));
  }
}

// Hands each code point to `visit(c, offset)`, c negative for an ill-formed sequence, until it returns
// false.
template <class Visitor>
void decodeUtf8(std::string_view text, Visitor visit) {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  std::size_t i = 0;
  while (i < text.size()) {
    const auto offset = i;
    UChar32 c = 0;
    U8_NEXT(bytes, i, text.size(), c);
    if (!visit(c, offset)) return;
  }
}

template <class Visitor>
void decodeUtf16(std::u16string_view text, Visitor visit) {
  std::size_t i = 0;
  while (i < text.size()) {
    UChar32 c = 0;
    U16_NEXT(text, i, text.size(), c);
    if (!visit(c)) return;
  }
}

}  // namespace

std::string toUtf8(std::u16string_view text) {
  std::string out;
  out.reserve(text.size());
  decodeUtf16(text, [&](UChar32 c) {
    appendUtf8(out, U_IS_SURROGATE(c) ? kReplacementCharacter : c);
    return true;
  });
  return out;
}

std::u16string toUtf16(std::string_view text) {
  std::u16string out;
  out.reserve(text.size());
  decodeUtf8(text, [&](UChar32 c, std::size_t) {
    appendUtf16(out, c < 0 ? kReplacementCharacter : c);
    return true;
  });
  return out;
}

Result<std::u16string> toUtf16Strict(std::string_view text) {
  std::u16string out;
  out.reserve(text.size());
  auto illFormedAt = std::string_view::npos;
  decodeUtf8(text, [&](UChar32 c, std::size_t offset) {
    if (c < 0) {
      illFormedAt = offset;
      return false;
    }
    appendUtf16(out, c);
    return true;
  });
  if (illFormedAt != std::string_view::npos) {
    return Error{"The text is not valid UTF-8 at byte " + std::to_string(illFormedAt) + "."};
  }
  return out;
}

bool isWellFormed(std::u16string_view text) {
  bool wellFormed = true;
  decodeUtf16(text, [&](UChar32 c) { return wellFormed = !U_IS_SURROGATE(c); });
  return wellFormed;
}

}  // namespace quorlo
