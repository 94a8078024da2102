#include "fakes/fake_desktop.h"
#include "fakes/fake_main_queue.h"
#include "fakes/fake_target_focus.h"
#include "ui/accessibility_help_window.h"
#include "ui/desktop/dbus_user_notifications.h"
#include "ui/desktop/pulse_audio_player.h"
#include "ui/desktop/qt_alerts.h"
#include "ui/desktop/qt_own_application.h"
#include "ui/desktop/screen_lock.h"
#include "ui/event_loop.h"
#include "ui/fake_notification_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QLabel>
#include <QMessageBox>
#include <QProcess>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace quorlo {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

TEST(PulseAudioPlayer, MeasuresSoundsAndIsSilentWithoutAServer) {
  PulseAudioPlayer player;
  const auto tap = fs::path(QUORLO_RESOURCES) / "sounds" / "Tap.wav";
  EXPECT_NEAR(player.duration(tap).value().count(), 0.12, 0.001);
  EXPECT_FALSE(player.duration("/etc/passwd").ok());
  setenv("PULSE_SERVER", "unix:/nowhere", 1);
  testing::internal::CaptureStderr();
  EXPECT_TRUE(player.play(tap).ok());
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(QtAlerts, AnswersWithTheButtonChosenAndTheLastOneWhenClosed) {
  FakeMainQueue queue;
  FakeTargetFocus focus(queue);
  QtAlerts alerts(focus);
  const Alert alert{u"<b>Message</b>", u"More", {u"Open System Settings", u"Deny"}};
  const auto answer = [&](auto user) {
    QTimer::singleShot(0, [&] { user(*qobject_cast<QMessageBox*>(QApplication::activeModalWidget())); });
    return alerts.runModal(alert);
  };
  EXPECT_EQ(answer([](QMessageBox& box) { box.buttons().front()->click(); }), 0U);
  EXPECT_EQ(answer([](QMessageBox& box) { box.buttons().back()->click(); }), 1U);
  EXPECT_EQ(answer([](QMessageBox& box) { box.close(); }), 1U);
  EXPECT_EQ(answer([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); }), 1U);
  EXPECT_EQ(answer([&](QMessageBox& box) {
              EXPECT_EQ(focus.activeOwnWindow, box.winId());
              QTest::keyClick(&box, Qt::Key_Return);
            }),
            0U);
}

TEST(AccessibilityHelpWindow, TellsWhatIsMissingNowAndIsNotForcedOnWhoHasJustClosedIt) {
  FakeDesktop desktop;
  desktop.grantTrust(false);
  FakeTargetFocus focus(desktop.queue);
  AccessibilityHelpWindow help(desktop, focus);
  help.open();
  auto* const window = QWidget::find(focus.activeOwnWindow);
  ASSERT_TRUE(window);
  const auto says = [&](const char* text) {
    const auto labels = window->findChildren<QLabel*>();
    return std::ranges::any_of(labels, [&](auto* label) { return label->text().contains(text); });
  };
  EXPECT_TRUE(says("lacks the extension XTEST"));
  desktop.grantTrust(true);
  help.open();
  EXPECT_TRUE(says("Nothing is missing"));
  window->close();
  help.open();
  EXPECT_FALSE(window->isVisible());
}

TEST(QtOwnApplication, ShowsAgainTheWindowsThatItHid) {
  QtOwnApplication application;
  QWidget open, closed;
  open.show();
  ASSERT_TRUE(application.hasVisibleWindows());
  {
    QWidget destroyedMeanwhile;
    destroyedMeanwhile.show();
    application.hide();
  }
  EXPECT_FALSE(application.hasVisibleWindows());
  application.unhide();
  EXPECT_TRUE(open.isVisible());
  EXPECT_FALSE(closed.isVisible());
}

// A session bus, and a connection of somebody else to it. The process keeps the first one it has met.
struct SessionBusTest : testing::Test {
  static void SetUpTestSuite() {
    daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
    daemon.waitForReadyRead();
    const auto address = daemon.readAllStandardOutput().trimmed();
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", address);
  }
  static void TearDownTestSuite() {
    daemon.terminate();
    daemon.waitForFinished();
  }
  static QDBusConnection connectAs(const QString& name) {
    return QDBusConnection::connectToBus(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"), name);
  }
  static QProcess daemon;
};
QProcess SessionBusTest::daemon;

TEST_F(SessionBusTest, TheScreenIsLockedWhileALockerThatIsThereSaysSo) {
  std::vector<bool> changes;
  ScreenLock lock([&](bool isLocked) { changes.push_back(isLocked); });
  {
    auto saver = connectAs("saver");
    const auto say = [&](bool isActive) {
      saver.send(QDBusMessage::createSignal("/ScreenSaver", "org.freedesktop.ScreenSaver", "ActiveChanged")
                 << isActive);
    };
    ASSERT_TRUE(runEventLoopUntil([&] {
      say(true);  // until the bus knows who listens
      return !changes.empty();
    }));
    for (const bool isActive : {false, true}) say(isActive);
    ASSERT_TRUE(runEventLoopUntil([&] { return changes.size() == 3; }));
  }
  QDBusConnection::disconnectFromBus("saver");
  ASSERT_TRUE(runEventLoopUntil([&] { return changes.size() == 4; })) << "it crashed";
  EXPECT_THAT(changes, ElementsAre(true, false, true, false));
}

// Answers what is asked at the start: a screen saver's GetActive, and logind's session with its LockedHint.
struct LockedScreen : QDBusVirtualObject {
  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override {
    const auto method = call.member();
    if (method == "GetActive") return bus.send(call.createReply(true));
    if (method.startsWith("GetSession")) {
      return bus.send(call.createReply(QVariant::fromValue(QDBusObjectPath("/session"))));
    }
    return method == "Get" && bus.send(call.createReply(QVariant::fromValue(QDBusVariant(true))));
  }
};

TEST_F(SessionBusTest, AScreenThatIsLockedAlreadyIsSeenToBeLocked) {
  for (const auto* const name : {"org.gnome.ScreenSaver", "org.freedesktop.login1"}) {
    auto locker = connectAs(name);
    LockedScreen screen;
    ASSERT_TRUE(locker.registerVirtualObject("/", &screen, QDBusConnection::SubPath));
    ASSERT_TRUE(locker.registerService(name));
    bool isLocked = false;
    ScreenLock lock([&](bool locked) { isLocked = locked; });
    EXPECT_TRUE(runEventLoopUntil([&] { return isLocked; })) << name;
    locker.unregisterService(name);
    locker.unregisterObject("/");
    QDBusConnection::disconnectFromBus(name);
  }
}

TEST_F(SessionBusTest, NotificationsShowAfterTheirDelayAndReportTheirOwnActions) {
  auto bus = connectAs("server");
  FakeNotificationServer server;
  ASSERT_TRUE(bus.registerObject("/org/freedesktop/Notifications", &server,
                                 QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
  ASSERT_TRUE(bus.registerService("org.freedesktop.Notifications"));

  FakeMainQueue queue;
  DBusUserNotifications notifications(queue);
  std::vector<std::string> chosen;
  notifications.addActionHandler([&](const std::string& category) { chosen.push_back(category); });
  notifications.post({u"Title", u"1 < 2", "First", u"Don't show again", Seconds(0.1)});
  queue.advance(Seconds(0.09));
  runEventLoopFor(Seconds(0.01));
  EXPECT_TRUE(server.shown.empty());
  queue.advance(Seconds(0.01));
  ASSERT_TRUE(runEventLoopUntil([&] { return server.shown.size() == 1; }));
  EXPECT_EQ(server.shown[0], (QStringList{"Title", "1 &lt; 2", "action", "Don't show again"}));
  Q_EMIT server.ActionInvoked(99, "action");
  Q_EMIT server.ActionInvoked(1, "default");
  EXPECT_TRUE(runEventLoopUntil([&] {
    Q_EMIT server.ActionInvoked(1, "action");
    return !chosen.empty();
  }));
  EXPECT_EQ(chosen[0], "First");

  QDBusConnection::disconnectFromBus("server");
  daemon.terminate();
  daemon.waitForFinished();
  notifications.post({u"Lost", u"", "", u"", Seconds(0)});
  queue.settle();
  runEventLoopFor(Seconds(0.01));
}

}  // namespace
}  // namespace quorlo
