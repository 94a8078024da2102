#include "engine/paste/paste_notifications.h"

#include "base/localized.h"

namespace quorlo {
namespace {

constexpr Seconds kNotificationDelay{0.1};

}  // namespace

UserNotification autoPasteOffNotification() {
  return {localized(u"Auto-Paste deactivated"), localized(u"Press ⌘V to insert snippet."), kDoNotShowAgain,
          // At most 20 characters.
          localized(u"Don't show again"), kNotificationDelay};
}

UserNotification pasteboardLostNotification() {
  return {localized(u"The clipboard was not kept"),
          localized(
              u"Its contents were too large, or the program they came from did not hand them over. Copy them "
              u"again if you still need them."),
          {},
          {},
          Seconds(0)};
}

}  // namespace quorlo
