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

}  // namespace quorlo
