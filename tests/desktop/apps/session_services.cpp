// test-session-services SERVICE...
//
// Stands for services of a session on the bus of DBUS_SESSION_BUS_ADDRESS, under the names given:
//   org.freedesktop.IBus      with the engine told last; its address file is written as IBus writes it
//   org.fcitx.Fcitx5          with the input method told last
//   org.a11y.Bus, org.a11y.atspi.Registry  with a window whose focused part has the role told last
// Prints "ready". What is told is the argument of org.quorlo.Test.Tell, at any path.
#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QDir>
#include <QFile>
#include <QTextStream>

struct EngineDescription {
  QString name;
};
Q_DECLARE_METATYPE(EngineDescription)

QDBusArgument& operator<<(QDBusArgument& out, const EngineDescription& engine) {
  out.beginStructure();
  out << QStringLiteral("IBusEngineDesc") << QVariantMap() << engine.name << QStringLiteral("A long name");
  out.endStructure();
  return out;
}
const QDBusArgument& operator>>(const QDBusArgument& in, EngineDescription&) {
  return in;
}

namespace {

class Services : public QDBusVirtualObject {
 public:
  QString introspect(const QString&) const override { return {}; }

  bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override {
    const auto reply = [&](const QVariant& value) { return bus.send(call.createReply(value)); };
    const auto method = call.member();
    if (method == "Tell") {
      tell(call.arguments().value(0).toString());
      return bus.send(call.createReply());
    }
    if (method == "Get") {
      const QVariant engine = QVariant::fromValue(EngineDescription{told_});
      return reply(QVariant::fromValue(QDBusVariant(QVariant::fromValue(QDBusVariant(engine)))));
    }
    if (method == "CurrentInputMethod") return reply(told_);
    if (method == "GetAddress") return reply(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"));
    if (method == "GetRole") return reply(call.path().section('/', -1).toUInt());
    if (method == "RegisterEvent") return bus.send(call.createReply());
    return false;
  }

 private:
  void tell(const QString& what) {
    auto bus = QDBusConnection::sessionBus();
    told_ = what;
    bus.send(
        QDBusMessage::createSignal("/org/freedesktop/IBus", "org.freedesktop.IBus", "GlobalEngineChanged")
        << what);
    // To the program with the focus alone.
    bus.send(QDBusMessage::createTargetedSignal(client_.baseService(),
                                                "/org/freedesktop/portal/inputcontext/1",
                                                "org.fcitx.Fcitx.InputContext1", "CurrentIM")
             << "A title" << what << "zh");
    bus.send(QDBusMessage::createSignal("/field/" + what, "org.a11y.atspi.Event.Object", "StateChanged")
             << "focused" << 1 << 0 << QVariant::fromValue(QDBusVariant(0)));
  }

  QString told_;
  QDBusConnection client_ = QDBusConnection::connectToBus(QDBusConnection::SessionBus, "client");
};

void writeAddressFile() {
  const QDir folder(qEnvironmentVariable("XDG_CONFIG_HOME") + "/ibus/bus");
  folder.mkpath(".");
  QFile file(folder.filePath(QDBusConnection::localMachineId() + "-unix-" +
                             qEnvironmentVariable("DISPLAY").section(':', 1)));
  file.remove();
  if (!file.open(QIODevice::WriteOnly)) qFatal("Cannot write %s", qPrintable(file.fileName()));
  file.write("# A comment\nIBUS_ADDRESS=" + qgetenv("DBUS_SESSION_BUS_ADDRESS") + "\nIBUS_DAEMON_PID=1\n");
}

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  qDBusRegisterMetaType<EngineDescription>();
  Services services;
  auto bus = QDBusConnection::sessionBus();
  bus.registerVirtualObject("/", &services, QDBusConnection::SubPath);
  for (const auto& name : QCoreApplication::arguments().mid(1)) {
    if (!bus.registerService(name)) qFatal("Cannot serve %s", qPrintable(name));
    if (name == "org.freedesktop.IBus") writeAddressFile();
  }
  QTextStream(stdout) << "ready\n" << Qt::flush;
  return QCoreApplication::exec();
}
