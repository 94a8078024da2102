#include "engine/accessibility_manager.h"

#include "engine/expansion_world.h"

namespace quorlo {
namespace {

using AccessibilityTest = ExpansionWorld;

TEST_F(AccessibilityTest, ASilentCheckWithoutPermissionSwitchesOffAndShowsNothing) {
  desktop.grantTrust(false);
  EXPECT_FALSE(accessibility.checkAccessibility(AccessibilityManager::Prompt::silent));
  EXPECT_FALSE(settings.abbreviationsEnabled());
  EXPECT_FALSE(settings.autoPasteIsEnabled());
  EXPECT_TRUE(alerts.shown.empty());
  EXPECT_FALSE(desktop.hasTap());
}

TEST_F(AccessibilityTest, TheAlertOpensTheSystemSettingsTwice) {
  alerts.choices = {0};
  accessibility.showAccessibilityAlert();
  EXPECT_EQ(desktop.openedUrls.size(), 1U);
  desktop.queue.advance(Seconds(0.9));
  EXPECT_EQ(desktop.openedUrls.size(), 1U);
  desktop.queue.advance(Seconds(0.2));
  EXPECT_EQ(desktop.openedUrls.size(), 2U);
  accessibility.showAccessibilityAlert();  // Deny
  desktop.queue.settle();
  EXPECT_EQ(desktop.openedUrls.size(), 2U);
  EXPECT_EQ(alerts.shown[0].message.substr(0, 24), u"\"Quorlo\" would like to c");
}

TEST_F(AccessibilityTest, AGrantWhileTheAlertIsOpenIsSeenAtOnce) {
  desktop.grantTrust(false);
  alerts.whileOpen = [this] { desktop.grantTrust(true); };
  EXPECT_TRUE(accessibility.checkAccessibility(AccessibilityManager::Prompt::showAlert));
  // What was switched off stays off until the user switches it on.
  EXPECT_FALSE(settings.abbreviationsEnabled());
}

}  // namespace
}  // namespace quorlo
