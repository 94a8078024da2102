#include "fakes/fake_main_queue.h"
#include "fakes/fake_user_defaults.h"
#include "platform/main_queue_contract.h"
#include "platform/user_defaults_contract.h"

namespace quorlo {
namespace {

TEST(FakeMainQueue, KeepsTheContract) {
  FakeMainQueue queue;
  expectTasksInTheOrderInWhichTheyFallDue(queue, [&](Seconds time) { queue.advance(time); });
}

TEST(FakeUserDefaults, KeepTheContract) {
  FakeUserDefaults defaults;
  writeValuesOfEveryType(defaults);
  expectValuesOfEveryType(defaults);
  expectTheLastWriteToHold(defaults);
}

}  // namespace
}  // namespace quorlo
