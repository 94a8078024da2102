#pragma once

#include "platform/main_queue.h"

#include <memory>

namespace quorlo {

// Holds back the keys that the user types, so that nothing interleaves with what is being inserted.
// Main thread.
class TypedKeysHold {
 public:
  // Destroying it ends the hold.
  class Hold {
   public:
    virtual ~Hold() = default;

    // Keys are about to be posted. False when the adapter has ended the hold by itself: then nothing may be
    // erased, since other keys have arrived behind the ones to erase.
    //
    // Until this is called the key that began the hold, which the tap has swallowed, is only on loan: if the
    // hold ends before, that key is delivered ahead of the queue, without asking the tap again.
    [[nodiscard]] virtual bool keepTrigger() = 0;

    // No key is posted for so long, by intention.
    virtual void expectPause(Seconds pause) = 0;
  };

  virtual ~TypedKeysHold() = default;

  // Keys typed from now on are queued. When the last hold ends, the queue is handed to the tap's callback
  // in order, as if typed then; that may begin a new hold, which keeps the rest of the queue.
  // What was inserted is waited for: keys are not delivered before the target has read the piece pasted
  // last. An adapter ends all holds by itself after 2 s, announced pauses apart, in which no key was posted
  // and the pasteboard not read, and as soon as a window of this program gets the focus.
  virtual std::unique_ptr<Hold> begin() = 0;
};

}  // namespace quorlo
