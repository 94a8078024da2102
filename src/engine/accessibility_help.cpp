#include "engine/accessibility_help.h"

#include "base/localized.h"

#include <string_view>
#include <utility>

namespace quorlo {
namespace {

AccessibilityHelp missingExtension(std::u16string_view extension) {
  auto what = localized(u"The X server lacks the extension %@.");
  if (const auto place = what.find(u"%@"); place != std::u16string::npos) what.replace(place, 2, extension);
  return {
      std::move(what),
      localized(u"Remote and virtual desktops are sometimes started without it. Use a server that has it, "
                u"as Xorg has, or remove the option “-extension” from the command that starts yours.")};
}

}  // namespace

AccessibilityHelp accessibilityHelp(AccessibilityObstacle obstacle) {
  switch (obstacle) {
    case AccessibilityObstacle::displayIsLost:
      return {localized(u"The connection to the display is lost."), localized(u"Start Quorlo again.")};
    case AccessibilityObstacle::waylandSession:
      return {
          localized(u"This is a Wayland session, in which no program sees the keys typed in another one."),
          localized(u"Log out, choose a session with “X11” or “Xorg” in its name on the login screen, often "
                    u"behind a gear button, and log in again.")};
    case AccessibilityObstacle::noXInput2:
      return missingExtension(u"XInput 2");
    case AccessibilityObstacle::noXtest:
      return missingExtension(u"XTEST");
    case AccessibilityObstacle::noXkb:
      return missingExtension(u"XKB");
    case AccessibilityObstacle::keyboardsAreTaken:
      return {localized(u"Another program keeps the keyboard to itself."),
              localized(u"Close programs that watch all keys, such as key remappers: Quorlo notices it by "
                        u"itself.")};
    case AccessibilityObstacle::noKeyboard:
      return {localized(u"No keyboard is plugged in."),
              localized(u"Plug one in: Quorlo notices it by itself.")};
    case AccessibilityObstacle::watchingIsInterrupted:
      return {
          localized(u"The keyboard is not watched at the moment."),
          localized(u"Quorlo tries again by itself. If this lasts longer than a minute, look for a program "
                    u"that changes the keyboard again and again.")};
  }
  return {};
}

}  // namespace quorlo
