#include "app/shell/files/starter_offer.h"

#include "fakes/fake_environment.h"
#include "fakes/fake_main_queue.h"
#include "fakes/fake_user_defaults.h"
#include "store/persistence_controller.h"
#include "store/records/ql_snippet.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

struct NewUser {
  FakeMainQueue queue;
  FakeEnvironment environment;
  FakeUserDefaults defaults;
  PersistenceController persistence{queue, environment};
  StarterOffer offer{defaults, persistence, QUORLO_STARTER_LIBRARY};
};

TEST(StarterOffer, IsMadeOnceToWhoHasNoSnippet) {
  NewUser user;
  EXPECT_TRUE(user.offer.isDue());
  const auto own = user.persistence.createExampleSnippet();
  EXPECT_FALSE(user.offer.isDue());
  user.persistence.managedObjectContext().deleteObject(*own);
  EXPECT_TRUE(user.offer.isDue());
  user.offer.decline();
  EXPECT_FALSE(StarterOffer(user.defaults, user.persistence, "").isDue());
}

TEST(StarterOffer, StandsWhenTheFileCannotBeRead) {
  NewUser user;
  EXPECT_FALSE(StarterOffer(user.defaults, user.persistence, "/nowhere").accept());
  EXPECT_TRUE(user.offer.isDue());
}

TEST(StarterOffer, BringsADozenSnippetsWithAbbreviationsThatDoNotStandInEachOthersWay) {
  NewUser user;
  ASSERT_TRUE(user.offer.accept());
  EXPECT_FALSE(user.offer.isDue());
  EXPECT_FALSE(user.persistence.managedObjectContext().hasChanges());
  const auto abbreviations = user.persistence.activeAbbreviations();
  EXPECT_EQ(abbreviations.size(), 12U);
  for (const auto& each : abbreviations) {
    for (const auto& other : abbreviations) EXPECT_TRUE(&each == &other || !each.starts_with(other));
  }
}

}  // namespace
}  // namespace quorlo
