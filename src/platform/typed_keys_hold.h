#pragma once

#include "base/subscription.h"

namespace quorlo {

// Holds back the keys that the user types, so that nothing interleaves with what is being inserted.
// Main thread.
class TypedKeysHold {
 public:
  virtual ~TypedKeysHold() = default;

  // Keys typed from now on are queued. When the last subscription ends, the queue is handed to the tap's
  // callback in order, as if typed then; that may begin a new hold, which keeps the rest of the queue.
  // What was inserted is waited for: keys are not delivered before the target has read the piece pasted
  // last. An adapter ends a hold by itself after 2 s in which no key was posted and the pasteboard not
  // read, and as soon as a window of this program gets the focus.
  virtual Subscription begin() = 0;
};

}  // namespace quorlo
