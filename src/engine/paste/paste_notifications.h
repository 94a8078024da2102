#pragma once

#include "platform/user_notifications.h"

namespace quorlo {

// The category whose action stops the notification below.
inline constexpr const char* kDoNotShowAgain = "DoNotShowAgain";

// With Auto-Paste off the user is told to paste by hand.
UserNotification autoPasteOffNotification();

// What the user had on the pasteboard could not be saved, and a snippet stands in its place.
UserNotification pasteboardLostNotification();

}  // namespace quorlo
