#include "engine/typed_key.h"

namespace quorlo {
namespace {

bool isCommand(const KeyDownEvent& event) {
  return (event.flags & modifier::kCommands) != 0;
}

}  // namespace

TypedKey typedKey(const KeyDownEvent& event) {
  if (isCommand(event)) return TypedKey::end;
  switch (event.keyCode) {
    case key::kForwardDelete:
    case key::kLeftArrow:
    case key::kRightArrow:
    case key::kDownArrow:
    case key::kUpArrow:
    case key::kReturn:
    case key::kKeypadEnter:
    case key::kTab:
    case key::kSpace:
      return TypedKey::end;
    default:
      break;
  }
  if (event.characters.find_first_of(u" \u00A0") != std::u16string::npos) return TypedKey::end;
  return event.keyCode == key::kBackspace ? TypedKey::backspace : TypedKey::text;
}

bool isDelimiter(const KeyDownEvent& event, const std::set<std::u16string, std::less<>>& delimiters) {
  if (isCommand(event) || !delimiters.contains(event.characters)) return false;
  const bool isShifted = (event.flags & modifier::kShift) != 0;
  return !isShifted || (event.characters != u"\r" && event.characters != u"\t");
}

}  // namespace quorlo
