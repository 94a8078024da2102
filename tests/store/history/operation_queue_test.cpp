#include "store/history/operation_queue.h"

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <thread>
#include <vector>

namespace quorlo {
namespace {

TEST(OperationQueue, RunsOneOperationAtATimeInOrderAndWaitsForTheOneUnderWay) {
  auto queue = std::make_unique<OperationQueue>();
  std::vector<int> order;  // unguarded: a second operation at the same time would be a race
  std::promise<void> begun;
  std::promise<void> mayEnd;
  for (int i = 0; i < 200; ++i) queue->addOperation([&, i] { order.push_back(i); });
  queue->addOperation([&] {
    begun.set_value();
    mayEnd.get_future().wait();
    order.push_back(200);
  });
  begun.get_future().wait();
  std::thread release([&mayEnd] { mayEnd.set_value(); });
  queue.reset();
  release.join();
  ASSERT_EQ(order.size(), 201U);
  for (int i = 0; i <= 200; ++i) EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
}

}  // namespace
}  // namespace quorlo
