#include "ui/typing/fcitx_input_method.h"

#include "base/log.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QStringList>

namespace quorlo {
namespace {

const auto kFcitx = QStringLiteral("org.fcitx.Fcitx5");
const auto kContext = QStringLiteral("org.fcitx.Fcitx.InputContext1");
const auto kConnection = QStringLiteral("quorlo-fcitx");
const auto kBus = QStringLiteral("org.freedesktop.DBus");
const auto kBusPath = QStringLiteral("/org/freedesktop/DBus");

}  // namespace

FcitxInputMethod::FcitxInputMethod() {
  auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  runs_.setConnection(bus);
  runs_.addWatchedService(kFcitx);
  connect(&runs_, &QDBusServiceWatcher::serviceRegistered, this, [this] { begin(); });
  connect(&runs_, &QDBusServiceWatcher::serviceUnregistered, this, [this] { end(); });
  const auto call = QDBusMessage::createMethodCall(kBus, kBusPath, kBus, QStringLiteral("NameHasOwner"))
                    << kFcitx;
  auto* const answer = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
    const QDBusPendingReply<bool> runs = *answer;
    if (runs.isValid() && runs.value()) begin();
    answer->deleteLater();
  });
}

FcitxInputMethod::~FcitxInputMethod() {
  end();
}

// A connection that listens in may do nothing else, so it is one of its own.
void FcitxInputMethod::begin() {
  end();
  auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, kConnection);
  if (!bus.isConnected()) return;
  bus.connect({}, {}, kContext, QStringLiteral("CurrentIM"), this,
              SLOT(currentChanged(QString, QString, QString)));
  const QStringList rules{QStringLiteral("type='signal',interface='%1',member='CurrentIM'").arg(kContext)};
  const auto call =
      QDBusMessage::createMethodCall(kBus, kBusPath, QStringLiteral("org.freedesktop.DBus.Monitoring"),
                                     QStringLiteral("BecomeMonitor"))
      << rules << 0U;
  auto* const answer = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [answer] {
    if (answer->isError()) {
      logWarning("WARNING: #fCx5mon - Cannot follow the input method of fcitx5: " +
                 answer->error().message().toStdString());
    }
    answer->deleteLater();
  });
  askForCurrent();
}

void FcitxInputMethod::askForCurrent() {
  const auto call = QDBusMessage::createMethodCall(kFcitx, QStringLiteral("/controller"),
                                                   QStringLiteral("org.fcitx.Fcitx.Controller1"),
                                                   QStringLiteral("CurrentInputMethod"));
  auto* const answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
    const QDBusPendingReply<QString> name = *answer;
    if (name.isValid()) currentChanged({}, name.value(), {});
    answer->deleteLater();
  });
}

void FcitxInputMethod::currentChanged(const QString&, const QString& name, const QString&) {
  setInputMethod(name.startsWith(QLatin1String("keyboard-")) ? QString() : name);
}

void FcitxInputMethod::end() {
  QDBusConnection::disconnectFromBus(kConnection);
  setInputMethod({});
}

void FcitxInputMethod::setInputMethod(const QString& name) {
  inputMethod_ = name;
  Q_EMIT changed();
}

}  // namespace quorlo
