#include "ui/typing/password_field.h"

#include "platform/background_queue.h"
#include "platform/main_queue.h"
#include "platform/workspace.h"
#include "ui/typing/accessibility_messages.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QList>
#include <QStringList>

#include <algorithm>
#include <utility>

namespace quorlo {
namespace {

const auto kStarter = QStringLiteral("org.a11y.Bus");
const auto kRegistry = QStringLiteral("org.a11y.atspi.Registry");
const auto kBus = QStringLiteral("org.freedesktop.DBus");
const auto kBusPath = QStringLiteral("/org/freedesktop/DBus");

QDBusMessage callTo(const QString& name, const QString& path, const QString& interface, const char* method) {
  auto call = QDBusMessage::createMethodCall(name, path, interface, QString::fromLatin1(method));
  call.setAutoStartService(false);
  return call;
}

// Calls `use` with the reply's value, unless it is an error.
template <class Value, class Use>
void ask(const QDBusConnection& bus, const QDBusMessage& call, QObject* owner, Use use) {
  auto* const answer = new QDBusPendingCallWatcher(bus.asyncCall(call), owner);
  QObject::connect(answer, &QDBusPendingCallWatcher::finished, owner, [answer, use = std::move(use)] {
    const QDBusPendingReply<Value> reply = *answer;
    if (reply.isValid()) use(reply.value());
    answer->deleteLater();
  });
}

}  // namespace

PasswordField::PasswordField(MainQueue& queue, BackgroundQueue& background, const Workspace& workspace)
    : queue_(queue), background_(background), workspace_(workspace) {
  auto bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  registerAccessibilityMessages();
  busRuns_.setConnection(bus);
  busRuns_.addWatchedService(kStarter);
  connect(&busRuns_, &QDBusServiceWatcher::serviceRegistered, this, [this] { askForAddress(); });
  connect(&busRuns_, &QDBusServiceWatcher::serviceUnregistered, this, [this] { end(); });
  askForAddress();
}

PasswordField::~PasswordField() {
  end();
}

void PasswordField::askForAddress() {
  ask<QString>(QDBusConnection::sessionBus(),
               callTo(kStarter, QStringLiteral("/org/a11y/bus"), kStarter, "GetAddress"), this,
               [this](const QString& address) { connectTo(address); });
}

// In the background, since a bus that hangs keeps its caller waiting.
void PasswordField::connectTo(const QString& address) {
  end();
  const auto connection = QStringLiteral("quorlo-accessibility-%1").arg(++connections_);
  background_.run([address, connection, &queue = queue_,
                   done = life_.guard([this, connection] { connected(connection); })] {
    QDBusConnection::connectToBus(address, connection);
    queue.run(done);
  });
}

void PasswordField::connected(const QString& connection) {
  QDBusConnection bus(connection);
  const bool isLatest = connection.endsWith(QLatin1Char('-') + QString::number(connections_));
  if (!isLatest || !bus.isConnected()) {
    QDBusConnection::disconnectFromBus(connection);
    return;
  }
  connection_ = connection;
  bus.connect({}, {}, QStringLiteral("org.a11y.atspi.Event.Object"), QStringLiteral("StateChanged"),
              QStringList{QStringLiteral("focused")}, {}, this, SLOT(focusChanged(QDBusMessage)));
  bus.connect(kRegistry, QStringLiteral("/org/a11y/atspi/accessible/root"),
              QStringLiteral("org.a11y.atspi.Event.Object"), QStringLiteral("ChildrenChanged"),
              QStringList{QStringLiteral("add")}, {}, this, SLOT(programsChanged(QDBusMessage)));
  names_ = std::make_unique<QDBusServiceWatcher>();
  names_->setConnection(bus);
  names_->addWatchedService(kRegistry);
  connect(names_.get(), &QDBusServiceWatcher::serviceRegistered, this, [this](const QString& name) {
    if (name == kRegistry) announceInterest();
  });
  connect(names_.get(), &QDBusServiceWatcher::serviceUnregistered, this, [this](const QString& name) {
    if (name == focused_.program) setPassword(false);
  });
  announceInterest();
}

// Programs send no events that nothing has registered for.
void PasswordField::announceInterest() {
  const auto call = callTo(kRegistry, QStringLiteral("/org/a11y/atspi/registry"), kRegistry, "RegisterEvent")
                    << QStringLiteral("object:state-changed:focused") << QStringList() << QString();
  QDBusConnection(connection_).asyncCall(call);
}

void PasswordField::end() {
  names_.reset();
  if (!connection_.isEmpty()) QDBusConnection::disconnectFromBus(connection_);
  connection_.clear();
  focused_ = {};
  setPassword(false);
}

void PasswordField::focusChanged(const QDBusMessage& event) {
  const Field field{event.service(), event.path()};
  const bool hasFocus = event.arguments().size() > 1 && event.arguments()[1].toInt() != 0;
  if (!hasFocus && field != focused_) return;
  // Programs tell the same twice.
  if (hasFocus && field == focused_) return;
  names_->removeWatchedService(focused_.program);
  focused_ = hasFocus ? field : Field{};
  process_ = 0;
  setPassword(false);
  if (hasFocus) askForRole();
}

void PasswordField::askForRole() {
  ask<uint>(QDBusConnection(connection_),
            callTo(focused_.program, focused_.path, QStringLiteral("org.a11y.atspi.Accessible"), "GetRole"),
            this, [this, field = focused_](uint role) {
              if (field != focused_ || role != kPasswordRole) return;
              focusIsOnPassword(field);
            });
}

// A program that starts may have given the focus before anything hears what it announces: a prompt, which is
// nothing but a password field, for instance.
void PasswordField::programsChanged(const QDBusMessage& event) {
  if (event.arguments().size() < 4) return;
  const auto added = event.arguments()[3].value<QDBusVariant>().variant();
  const auto program = qdbus_cast<AccessibleReference>(added);
  if (!program.program.isEmpty()) lookFor(program);
}

void PasswordField::lookFor(const AccessibleReference& program) {
  constexpr uint kInOrder = 1;
  constexpr int kOne = 1;
  const auto call =
      callTo(program.program, program.path.path(), QStringLiteral("org.a11y.atspi.Collection"), "GetMatches")
      << QVariant::fromValue(FocusedPasswordRule{}) << kInOrder << kOne << true;
  ask<QList<AccessibleReference>>(QDBusConnection(connection_), call, this,
                                  [this](const QList<AccessibleReference>& found) {
                                    if (!found.isEmpty())
                                      focusIsOnPassword({found.first().program, found.first().path.path()});
                                  });
}

void PasswordField::focusIsOnPassword(const Field& field) {
  names_->removeWatchedService(focused_.program);
  focused_ = field;
  process_ = 0;
  setPassword(true);
  names_->addWatchedService(field.program);
  askForProcess();
}

void PasswordField::askForProcess() {
  ask<uint>(QDBusConnection(connection_),
            callTo(kBus, kBusPath, kBus, "GetConnectionUnixProcessID") << focused_.program, this,
            [this, field = focused_](uint process) {
              if (field != focused_) return;
              process_ = process;
              Q_EMIT changed();
            });
}

void PasswordField::setPassword(bool isPassword) {
  isPassword_ = isPassword;
  Q_EMIT changed();
}

// Some programs do not tell when another one gets the focus. A process that has no window on the desktop
// stands for a program in a sandbox: then the events alone count.
bool PasswordField::hasFocus() const {
  if (!isPassword_ || process_ == 0) return isPassword_;
  bool hasWindow = false;
  for (const auto& each : workspace_.runningApplications()) {
    if (each->processIdentifier != process_) continue;
    if (each->isActive) return true;
    hasWindow = true;
  }
  return !hasWindow;
}

}  // namespace quorlo
