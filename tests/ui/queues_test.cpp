#include "platform/main_queue_contract.h"
#include "ui/desktop/qt_main_queue.h"
#include "ui/event_loop.h"

#include <gtest/gtest.h>

#include <QEventLoop>
#include <QTimer>

#include <memory>
#include <thread>

namespace quorlo {
namespace {

TEST(QtMainQueue, KeepsTheContract) {
  QtMainQueue queue;
  expectTasksInTheOrderInWhichTheyFallDue(queue, runEventLoopFor);
}

TEST(QtMainQueue, TakesTasksFromOtherThreadsInTheirOrder) {
  QtMainQueue queue;
  std::vector<int> ran;
  std::thread other([&] {
    for (int task = 0; task < 1000; ++task) {
      queue.run([&ran, task] { ran.push_back(task); });
    }
  });
  EXPECT_TRUE(runEventLoopUntil([&] { return ran.size() == 1000; }));
  other.join();
  EXPECT_TRUE(std::ranges::is_sorted(ran));
}

TEST(QtMainQueue, GoesOnWhileATaskWaitsInALoopOfItsOwn) {
  QtMainQueue queue;
  QEventLoop alert;
  bool closed = false;
  queue.run([&] {
    alert.exec();
    closed = true;
  });
  queue.run([&] { queue.runAfter(Seconds(0.01), [&] { alert.quit(); }); });
  EXPECT_TRUE(runEventLoopUntil([&] { return closed; }));
}

TEST(QtMainQueue, LeavesQtItsShareDuringEndlessWork) {
  QtMainQueue queue;
  std::function<void()> work = [&] { queue.run(work); };
  queue.run(work);
  bool timerFired = false;
  QTimer::singleShot(1, [&] { timerFired = true; });
  EXPECT_TRUE(runEventLoopUntil([&] { return timerFired; }));
}

TEST(QtMainQueue, DropsWhatIsLeftAtTheEndEvenIfThatQueuesMore) {
  bool ran = false;
  {
    QtMainQueue queue;
    const auto held = std::shared_ptr<int>(new int, [&](int* value) {
      delete value;
      queue.run([] {});
    });
    queue.run([held = held] {});
    queue.runAfter(Seconds(1e300), [&] { ran = true; });
    runEventLoopFor(Seconds(0.002));
  }
  runEventLoopFor(Seconds(0.002));
  EXPECT_FALSE(ran);
}

}  // namespace
}  // namespace quorlo
