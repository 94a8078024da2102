#include "program/ignored_piece_notice.h"

#include "fakes/fake_user_defaults.h"
#include "fakes/fake_user_notifications.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quorlo {
namespace {

TEST(IgnoredPieceNoticeTest, TheUserIsToldOnceForEachApplicationAndMayChooseAnotherWay) {
  FakeUserDefaults defaults;
  FakeUserNotifications notifications;
  std::vector<std::string> chosen;
  const auto choose = [&](const std::string& application) { chosen.push_back(application); };
  {
    IgnoredPieceNotice notice(defaults, notifications, choose);
    notice.tell("Emacs", "GNU Emacs");
    notice.tell("emacs", "GNU Emacs");
    notice.tell("", "unknown");
  }
  ASSERT_EQ(notifications.posted.size(), 1U);
  EXPECT_EQ(notifications.posted[0].title, u"Text does not arrive in GNU Emacs");
  notifications.chooseAction();
  EXPECT_EQ(chosen, std::vector<std::string>{"Emacs"});

  IgnoredPieceNotice later(defaults, notifications, choose);  // the next start
  later.tell("emacs", "GNU Emacs");
  later.tell("mac", "Mac");  // no part of another name
  EXPECT_EQ(notifications.posted.size(), 2U);
}

}  // namespace
}  // namespace quorlo
