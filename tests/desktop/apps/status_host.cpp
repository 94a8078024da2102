// test-status-host   a tray without a picture: serves org.kde.StatusNotifierWatcher until it is killed, and
// prints "ready", then the bus name of each item that registers.
#include <QCoreApplication>
#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QTextStream>

class Watcher : public QObject, protected QDBusContext {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
  Q_PROPERTY(QStringList RegisteredStatusNotifierItems MEMBER items_)
  Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)
  Q_PROPERTY(int ProtocolVersion READ protocolVersion)

 public:
  bool hasHost() const { return true; }
  int protocolVersion() const { return 0; }

 public Q_SLOTS:
  void RegisterStatusNotifierItem(const QString& service) {
    const auto item = service.startsWith('/') ? message().service() : service;
    items_ << item;
    QTextStream(stdout) << item << "\n" << Qt::flush;
    Q_EMIT StatusNotifierItemRegistered(item);
  }
  void RegisterStatusNotifierHost(const QString& /*service*/) {}

 Q_SIGNALS:
  void StatusNotifierItemRegistered(const QString& item);
  void StatusNotifierItemUnregistered(const QString& item);
  void StatusNotifierHostRegistered();

 private:
  QStringList items_;
};

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  Watcher watcher;
  auto bus = QDBusConnection::sessionBus();
  if (!bus.registerObject("/StatusNotifierWatcher", &watcher, QDBusConnection::ExportAllContents) ||
      !bus.registerService("org.kde.StatusNotifierWatcher")) {
    qFatal("There is another tray");
  }
  Q_EMIT watcher.StatusNotifierHostRegistered();
  QTextStream(stdout) << "ready\n" << Qt::flush;
  return QCoreApplication::exec();
}

#include "status_host.moc"
