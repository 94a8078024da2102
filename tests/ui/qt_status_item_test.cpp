#include "ui/tray/qt_status_item.h"
#include "fakes/fake_main_queue.h"
#include "fakes/fake_user_defaults.h"
#include "fakes/fake_user_notifications.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

TEST(QtStatusItemTest, SaysOnceEverThatThereIsNoTray) {
  FakeMainQueue queue;
  FakeUserNotifications notifications;
  FakeUserDefaults defaults;
  for (int start = 0; start < 2; ++start) {
    QtStatusItem item({queue, notifications, defaults});
    item.setVisible(true);
    EXPECT_EQ(notifications.posted.size(), static_cast<std::size_t>(start))
        << "a panel may still be starting";
    queue.settle();
    EXPECT_EQ(notifications.posted.size(), 1U);
  }
  FakeUserDefaults ofSomebodyElse;
  QtStatusItem hidden({queue, notifications, ofSomebodyElse});
  hidden.setVisible(true);
  hidden.setVisible(false);
  queue.settle();
  EXPECT_EQ(notifications.posted.size(), 1U);
}

}  // namespace
}  // namespace quorlo
