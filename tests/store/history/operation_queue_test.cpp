#include "store/history/operation_queue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <memory>
#include <set>
#include <thread>
#include <vector>

namespace quorlo {
namespace {

TEST(OperationQueue, RunsOneOperationAtATimeInOrderOffTheCallersThread) {
  OperationQueue queue;
  std::vector<int> order;  // unguarded: a second operation at the same time would be a race
  std::set<std::thread::id> threads;
  std::promise<void> done;
  for (int i = 0; i < 200; ++i) {
    queue.addOperation([&, i] {
      order.push_back(i);
      threads.insert(std::this_thread::get_id());
      if (i == 199) queue.addOperation([&done] { done.set_value(); });
    });
  }
  done.get_future().wait();
  ASSERT_EQ(order.size(), 200U);
  EXPECT_TRUE(std::ranges::is_sorted(order));
  EXPECT_EQ(threads.size(), 1U);
  EXPECT_FALSE(threads.contains(std::this_thread::get_id()));
}

TEST(OperationQueue, WaitsAtItsEndForTheOperationUnderWay) {
  auto queue = std::make_unique<OperationQueue>();
  std::promise<void> begun;
  std::promise<void> mayEnd;
  bool finished = false;
  queue->addOperation([&] {
    begun.set_value();
    mayEnd.get_future().wait();
    finished = true;
  });
  begun.get_future().wait();
  std::thread release([&mayEnd] { mayEnd.set_value(); });
  queue.reset();
  EXPECT_TRUE(finished);
  release.join();
}

}  // namespace
}  // namespace quorlo
