#include "program/doctor/typing_obstacle_text.h"

#include "base/localized.h"
#include "text/utf.h"

#include <string_view>

namespace quorlo {
namespace {

std::u16string withName(std::u16string sentence, std::u16string_view name) {
  if (const auto place = sentence.find(u"%@"); place != std::u16string::npos)
    sentence.replace(place, 2, name);
  return sentence;
}

}  // namespace

AccessibilityHelp typingObstacleHelp(TypingObstacle obstacle, const std::string& inputMethod) {
  switch (obstacle) {
    case TypingObstacle::keyboardIsTaken:
      return {localized(
                  u"A lock screen, a prompt or another program has the keyboard for itself: nothing expands "
                  u"there."),
              localized(u"Close its window, or leave its full screen.")};
    case TypingObstacle::passwordField:
      return {localized(u"The keys go into a password field: nothing expands there."),
              localized(u"Type in another field.")};
    case TypingObstacle::inputMethod:
      return {
          withName(localized(u"The input method %@ is active: nothing expands until a keyboard layout is."),
                   toUtf16(inputMethod)),
          localized(u"Switch to a keyboard layout, or have abbreviations expand all the same: Settings > "
                    u"Expansion.")};
  }
  return {};
}

}  // namespace quorlo
