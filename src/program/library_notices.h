#pragma once

#include "store/library_notice.h"

namespace quorlo {

class UserNotifications;

// Shows the user what has befallen the library's file.
void post(const LibraryNotice& notice, UserNotifications& notifications);

}  // namespace quorlo
