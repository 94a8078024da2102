#pragma once

namespace quorlo {

// Says once that the X server is gone. Qt may notice it before the adapters do and then ends the process on
// the spot by exit(); from sayWhenTheDisplayIsLost() on that is told, too, until the event loop has ended.
void sayWhenTheDisplayIsLost();
void sayThatTheDisplayIsLost();
void theEventLoopHasEnded();

}  // namespace quorlo
