#include "program/lost_display_notice.h"

#include "base/log.h"

#include <atomic>
#include <cstdlib>

namespace quorlo {
namespace {

std::atomic<bool> isPending = false;

}  // namespace

void sayWhenTheDisplayIsLost() {
  isPending = true;
  std::atexit(sayThatTheDisplayIsLost);
}

void sayThatTheDisplayIsLost() {
  if (!isPending.exchange(false)) return;
  logError("The connection to the X server is lost. Start Quorlo again when the display is back.");
}

void theEventLoopHasEnded() {
  isPending = false;
}

}  // namespace quorlo
