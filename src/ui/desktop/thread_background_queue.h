#pragma once

#include "platform/background_queue.h"

#include <memory>

class QThreadPool;

namespace quorlo {

// A few threads that come and go with the work. Destruction drops the tasks not yet begun and waits for
// those under way.
class ThreadBackgroundQueue final : public BackgroundQueue {
 public:
  ThreadBackgroundQueue();
  ~ThreadBackgroundQueue() override;

  void run(std::function<void()> task) override;

 private:
  std::unique_ptr<QThreadPool> threads_;
};

}  // namespace quorlo
