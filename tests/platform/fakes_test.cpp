#include "fakes/fake_hot_key_center.h"
#include "fakes/fake_main_queue.h"
#include "fakes/fake_pasteboard.h"
#include "fakes/fake_user_defaults.h"
#include "platform/hot_key_contract.h"
#include "platform/main_queue_contract.h"
#include "platform/pasteboard_contract.h"
#include "platform/user_defaults_contract.h"

namespace quorlo {
namespace {

TEST(FakeMainQueue, KeepsTheContract) {
  FakeMainQueue queue;
  expectTasksInTheOrderInWhichTheyFallDue(queue, [&](Seconds time) { queue.advance(time); });
}

TEST(FakeHotKeyCenter, KeepsTheContract) {
  FakeHotKeyCenter center;
  expectHotKeysToCallWhileTheyAreRegistered(center, [&](Shortcut shortcut) { center.press(shortcut); });
}

TEST(FakePasteboard, KeepsTheContract) {
  FakeMainQueue queue;
  FakePasteboard pasteboard(queue);
  const RunUntil runUntil = [&](const std::function<bool()>& condition) {
    queue.settle();
    return condition();
  };
  expectContentsToBeReadBack(pasteboard, runUntil);
  expectACopyToOutliveLaterContents(pasteboard, runUntil);
  const auto copyElsewhere = [&](std::string_view text) { pasteboard.copyFromElsewhere(text); };
  expectOnlyUnchangedContentsToBeReplaced(pasteboard, copyElsewhere, runUntil);
}

TEST(FakeUserDefaults, KeepTheContract) {
  FakeUserDefaults defaults;
  writeValuesOfEveryType(defaults);
  expectValuesOfEveryType(defaults);
  expectTheLastWriteToHold(defaults);
}

}  // namespace
}  // namespace quorlo
