#pragma once

#include <signal.h>

namespace quorlo {

class WorkProgress;

// While it lives, Ctrl-C cancels the work, which then ends without an effect; a second one ends the process.
// One at a time.
class CancelledByInterrupt {
 public:
  explicit CancelledByInterrupt(WorkProgress& progress);
  CancelledByInterrupt(const CancelledByInterrupt&) = delete;
  CancelledByInterrupt& operator=(const CancelledByInterrupt&) = delete;
  ~CancelledByInterrupt();

 private:
  struct sigaction former_ {};
};

}  // namespace quorlo
