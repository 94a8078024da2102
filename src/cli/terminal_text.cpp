#include "cli/terminal_text.h"

#include "text/graphemes.h"
#include "text/utf.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cstdint>

namespace quorlo {
namespace {

constexpr char16_t kControlPictures = 0x2400;
constexpr char16_t kPictureOfDelete = 0x2421;
constexpr char16_t kReplacement = 0xFFFD;
constexpr char16_t kReturnSymbol = 0x23CE;

char16_t shownInPlaceOf(char16_t unit, LineBreaks lineBreaks) {
  if (unit == u'\n') return lineBreaks == LineBreaks::kept ? unit : kReturnSymbol;
  if (unit == u'\t') return u' ';
  if (unit == 0x2028 || unit == 0x2029) return kReturnSymbol;
  if (unit < 0x20) return static_cast<char16_t>(kControlPictures + unit);
  if (unit == 0x7F) return kPictureOfDelete;
  if (unit >= 0x80 && unit < 0xA0) return kReplacement;
  return unit;
}

// By the first character that takes room; an emoji made of several counts once, as terminals draw it.
std::size_t widthOfGrapheme(std::u16string_view grapheme) {
  const auto length = static_cast<std::int32_t>(grapheme.size());
  std::size_t width = 0;
  for (std::int32_t i = 0; i < length;) {
    UChar32 character = 0;
    U16_NEXT(grapheme.data(), i, length, character);
    const auto category = u_charType(character);
    if (character == 0xFE0F && width == 1) return 2;  // asks for the picture of a character
    if (category == U_NON_SPACING_MARK || category == U_ENCLOSING_MARK || category == U_FORMAT_CHAR) continue;
    const auto eastAsian = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
    width = std::max<std::size_t>(width, eastAsian == U_EA_WIDE || eastAsian == U_EA_FULLWIDTH ? 2 : 1);
  }
  return width;
}

bool isPlain(std::string_view text) {
  return std::ranges::all_of(text, [](char each) { return each >= 0x20 && each < 0x7F; });
}

}  // namespace

std::string printable(std::string_view text, LineBreaks lineBreaks) {
  if (isPlain(text)) return std::string(text);
  auto shown = toUtf16(text);
  for (auto& unit : shown) unit = shownInPlaceOf(unit, lineBreaks);
  return toUtf8(shown);
}

std::size_t displayWidth(std::string_view text) {
  if (isPlain(text)) return text.size();
  const auto wide = toUtf16(text);
  const auto starts = graphemeStarts(wide);
  std::size_t width = 0;
  for (std::size_t i = 0; i < starts.size(); ++i) {
    const auto end = i + 1 < starts.size() ? starts[i + 1] : wide.size();
    width += widthOfGrapheme(std::u16string_view(wide).substr(starts[i], end - starts[i]));
  }
  return width;
}

std::string cutToWidth(std::string_view text, std::size_t columns) {
  // No character takes more than two columns and none fewer bytes than columns.
  if (text.size() <= columns || displayWidth(text) <= columns) return std::string(text);
  if (columns == 0) return {};
  const auto wide = toUtf16(text);
  const auto starts = graphemeStarts(wide);
  std::size_t width = 0;
  for (std::size_t i = 0; i < starts.size(); ++i) {
    const auto end = i + 1 < starts.size() ? starts[i + 1] : wide.size();
    const auto next = widthOfGrapheme(std::u16string_view(wide).substr(starts[i], end - starts[i]));
    if (width + next > columns - 1) return toUtf8(std::u16string_view(wide).substr(0, starts[i])) + "…";
    width += next;
  }
  return std::string(text);
}

std::string alignedLine(std::span<const std::string> fields, std::span<const std::size_t> widths) {
  std::string line;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const auto field = cutToWidth(fields[i], widths[i]);
    line += field;
    if (i + 1 < fields.size()) line.append(widths[i] - displayWidth(field), ' ').append(kGap);
  }
  return line + "\n";
}

}  // namespace quorlo
