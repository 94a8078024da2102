#pragma once

#include "platform/main_queue.h"

#include <functional>

namespace quorlo {

// What becomes of the pieces that EventPoster::paste() pastes. Main thread.
class PastedPieces {
 public:
  virtual ~PastedPieces() = default;

  // Whether the target of the last paste has taken the piece itself. False as well when it had none.
  virtual bool lastWasRead() const = 0;

  // Calls when keys posted now no longer overtake the piece pasted last: the target has taken it, or another
  // process has for it. A target that does not begin to read within `patience` is not awaited any longer.
  // May call at once.
  virtual void whenRead(Seconds patience, std::function<void()> next) = 0;
};

}  // namespace quorlo
