#include "ui/typing/ibus_engine.h"

#include "platform/background_queue.h"
#include "platform/main_queue.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QVariantMap>

namespace quorlo {
namespace {

const auto kIbus = QStringLiteral("org.freedesktop.IBus");
const auto kIbusPath = QStringLiteral("/org/freedesktop/IBus");

// Its name tells the machine and the display: for DISPLAY=":0.0" "<machine>-unix-0".
QString addressFile() {
  if (const auto file = qEnvironmentVariable("IBUS_ADDRESS_FILE"); !file.isEmpty()) return file;
  const auto display = qEnvironmentVariable("DISPLAY");
  const auto colon = display.lastIndexOf(QLatin1Char(':'));
  const auto host = colon > 0 ? display.left(colon) : QStringLiteral("unix");
  const auto number = display.mid(colon + 1).section(QLatin1Char('.'), 0, 0);
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
         QStringLiteral("/ibus/bus/%1-%2-%3")
             .arg(QString::fromUtf8(QDBusConnection::localMachineId()), host, number);
}

// Empty where there is none, or not yet.
QString readAddress() {
  if (const auto address = qEnvironmentVariable("IBUS_ADDRESS"); !address.isEmpty()) return address;
  QFile file(addressFile());
  if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) return {};
  while (!file.atEnd()) {
    const auto line = QString::fromUtf8(file.readLine());
    constexpr QLatin1String kKey("IBUS_ADDRESS=");
    if (line.startsWith(kKey) && line.endsWith(QLatin1Char('\n'))) return line.mid(kKey.size()).trimmed();
  }
  return {};
}

// An engine is described by a structure that begins with the structure's name, attachments and the engine's
// name.
QString nameInDescription(QVariant description) {
  while (description.canConvert<QDBusVariant>()) description = description.value<QDBusVariant>().variant();
  if (!description.canConvert<QDBusArgument>()) return {};
  const auto structure = description.value<QDBusArgument>();
  if (structure.currentType() != QDBusArgument::StructureType) return {};
  QString type;
  QVariantMap attachments;
  QString name;
  structure.beginStructure();
  structure >> type >> attachments >> name;
  return name;
}

}  // namespace

IbusEngine::IbusEngine(MainQueue& queue, BackgroundQueue& background)
    : queue_(queue), background_(background) {
  connect(&files_, &QFileSystemWatcher::directoryChanged, this, [this] { look(); });
  connect(&files_, &QFileSystemWatcher::fileChanged, this, [this] { look(); });
  look();
}

IbusEngine::~IbusEngine() {
  disconnect();
}

void IbusEngine::look() {
  watchForTheFile();
  const auto address = readAddress();
  if (address.isEmpty() || address == address_) return;
  disconnect();
  address_ = address;
  const auto connection = QStringLiteral("quorlo-ibus-%1").arg(++connections_);
  // An IBus that hangs keeps its caller waiting.
  background_.run([done = life_.guard([this, connection, address] { connected(connection, address); }),
                   connection, address, &queue = queue_] {
    QDBusConnection::connectToBus(address, connection);
    queue.run(done);
  });
}

// The file, or the nearest folder above it in which one can appear.
void IbusEngine::watchForTheFile() {
  const QFileInfo file(addressFile());
  if (file.exists()) files_.addPath(file.filePath());
  auto folder = file.path();
  while (!QFileInfo::exists(folder) && folder != QFileInfo(folder).path()) folder = QFileInfo(folder).path();
  if (files_.directories() == QStringList(folder)) return;
  if (const auto old = files_.directories(); !old.isEmpty()) files_.removePaths(old);
  files_.addPath(folder);
}

void IbusEngine::connected(const QString& connection, const QString& address) {
  QDBusConnection bus(connection);
  if (address != address_ || !bus.isConnected()) {
    QDBusConnection::disconnectFromBus(connection);
    return;
  }
  connection_ = connection;
  bus.connect({}, kIbusPath, kIbus, QStringLiteral("GlobalEngineChanged"), this,
              SLOT(engineChanged(QString)));
  bus.connect({}, QStringLiteral("/org/freedesktop/DBus/Local"), QStringLiteral("org.freedesktop.DBus.Local"),
              QStringLiteral("Disconnected"), this, SLOT(busEnded()));
  askForEngine();
}

void IbusEngine::askForEngine() {
  auto call = QDBusMessage::createMethodCall(
                  kIbus, kIbusPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"))
              << kIbus << QStringLiteral("GlobalEngine");
  auto* const answer = new QDBusPendingCallWatcher(QDBusConnection(connection_).asyncCall(call), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, connection = connection_] {
    const QDBusPendingReply<QDBusVariant> engine = *answer;
    if (engine.isValid() && connection == connection_) {
      engineChanged(nameInDescription(engine.value().variant()));
    }
    answer->deleteLater();
  });
}

void IbusEngine::engineChanged(const QString& engine) {
  setInputMethod(engine.startsWith(QLatin1String("xkb:")) ? QString() : engine);
}

void IbusEngine::busEnded() {
  disconnect();
}

void IbusEngine::disconnect() {
  if (!connection_.isEmpty()) QDBusConnection::disconnectFromBus(connection_);
  connection_.clear();
  address_.clear();
  setInputMethod({});
}

void IbusEngine::setInputMethod(const QString& name) {
  inputMethod_ = name;
  Q_EMIT changed();
}

}  // namespace quorlo
