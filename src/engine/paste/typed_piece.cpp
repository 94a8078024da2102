#include "engine/paste/typed_piece.h"

#include "platform/event_poster.h"

#include <algorithm>
#include <string>

namespace quorlo {
namespace {

constexpr std::u16string_view kTypedByKeys = u"\n\t";

}  // namespace

bool typePiece(EventPoster& poster, std::u16string_view text) {
  std::u16string characters(text);
  std::erase_if(characters,
                [](char16_t unit) { return kTypedByKeys.find(unit) != std::u16string_view::npos; });
  if (!poster.canType(characters)) return false;
  while (!text.empty()) {
    const auto end = std::min(text.find_first_of(kTypedByKeys), text.size());
    if (end > 0) poster.typeText(text.substr(0, end));
    if (end == text.size()) break;
    poster.postKey(text[end] == u'\n' ? key::kReturn : key::kTab, 0, PostLocation::annotatedSession);
    text.remove_prefix(end + 1);
  }
  return true;
}

}  // namespace quorlo
