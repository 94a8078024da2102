#include "platform/insertion/key_counts.h"

#include "text/code_points.h"
#include "text/graphemes.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace quorlo {
namespace {

// Below the first combining mark every character is one for all of them.
bool isSimple(std::u16string_view text) {
  return std::ranges::all_of(text, [](char16_t unit) { return unit < 0x300; });
}

bool isEmoji(char32_t c) {
  const auto character = static_cast<UChar32>(c);
  return u_hasBinaryProperty(character, UCHAR_EXTENDED_PICTOGRAPHIC) != 0 ||
         u_hasBinaryProperty(character, UCHAR_REGIONAL_INDICATOR) != 0;
}

// Thai and Lao AM belong to the letter before them, but toolkits place the caret between the two.
bool isAm(char32_t c) {
  return c == 0x0E33 || c == 0x0EB3;
}

bool takesNoCell(char32_t c) {
  const auto type = u_charType(static_cast<UChar32>(c));
  return type == U_NON_SPACING_MARK || type == U_ENCLOSING_MARK || type == U_FORMAT_CHAR;
}

std::size_t decomposedLength(std::u16string_view cluster) {
  UErrorCode status = U_ZERO_ERROR;
  const auto* const normalizer = unorm2_getNFDInstance(&status);
  if (U_FAILURE(status)) return toUtf32(cluster).size();
  std::u16string decomposed(cluster.size() * 4 + 8, u'\0');
  const auto length =
      unorm2_normalize(normalizer, cluster.data(), static_cast<std::int32_t>(cluster.size()),
                       decomposed.data(), static_cast<std::int32_t>(decomposed.size()), &status);
  if (U_FAILURE(status)) return toUtf32(cluster).size();
  return toUtf32(std::u16string_view(decomposed).substr(0, static_cast<std::size_t>(length))).size();
}

// Of these scripts Pango has Backspace erase whole clusters, of all others one decomposed code point.
bool isErasedWholeByGtk(char32_t base) {
  using Range = std::pair<char32_t, char32_t>;
  static constexpr std::array kScripts{
      Range{0, 0x2AF},       Range{0x1E00, 0x1EFF},                       // Latin
      Range{0x370, 0x3FF},   Range{0x1F00, 0x1FFF}, Range{0x400, 0x52F},  // Greek, Cyrillic
      Range{0x3040, 0x30FF}, Range{0xAC00, 0xD7A3},                       // kana, Hangul syllables
  };
  return isEmoji(base) || std::ranges::any_of(kScripts, [&](const Range& range) {
           return base >= range.first && base <= range.second;
         });
}

std::size_t codePointsWithCells(std::u16string_view text) {
  const auto characters = toUtf32(text);
  return static_cast<std::size_t>(
      std::ranges::count_if(characters, [](char32_t c) { return !takesNoCell(c); }));
}

std::size_t backspacesOverCluster(std::u16string_view cluster, Toolkit toolkit) {
  const auto characters = toUtf32(cluster);
  switch (toolkit) {
    case Toolkit::gtk:
      return isErasedWholeByGtk(characters[0]) ? 1 : decomposedLength(cluster);
    case Toolkit::qt:
    case Toolkit::libreOffice:
      return characters.size();
    case Toolkit::web:
      return isEmoji(characters[0]) ? 1 : characters.size();
    case Toolkit::terminal:
      return std::max<std::size_t>(codePointsWithCells(cluster), 1);
    case Toolkit::unknown:
      break;
  }
  return 1;
}

std::size_t leftPressesOverCluster(std::u16string_view cluster, Toolkit toolkit) {
  if (toolkit == Toolkit::terminal) return std::max<std::size_t>(codePointsWithCells(cluster), 1);
  return 1 + static_cast<std::size_t>(std::ranges::count_if(toUtf32(cluster).substr(1), isAm));
}

template <class Count>
std::size_t sumOverClusters(std::u16string_view text, Count count) {
  std::size_t sum = 0;
  const auto starts = graphemeStarts(text);
  for (std::size_t i = 0; i < starts.size(); ++i) {
    const auto end = i + 1 < starts.size() ? starts[i + 1] : text.size();
    sum += count(text.substr(starts[i], end - starts[i]));
  }
  return sum;
}

}  // namespace

std::size_t backspacesOver(std::u16string_view text, const std::function<Toolkit()>& toolkit) {
  if (isSimple(text)) return graphemeCount(text);
  return sumOverClusters(
      text, [of = toolkit()](std::u16string_view cluster) { return backspacesOverCluster(cluster, of); });
}

std::size_t leftPressesOver(std::u16string_view text, const std::function<Toolkit()>& toolkit) {
  if (isSimple(text)) return graphemeCount(text);
  return sumOverClusters(
      text, [of = toolkit()](std::u16string_view cluster) { return leftPressesOverCluster(cluster, of); });
}

}  // namespace quorlo
