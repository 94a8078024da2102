#include "program/application_service.h"

#include "base/log.h"
#include "program/application_adaptors.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QObject>
#include <QTimer>
#include <QUrl>

#include <utility>

namespace quorlo {
namespace {

class ServedObject final : public QObject {
 public:
  explicit ServedObject(ApplicationRequests requests) : requests_(std::move(requests)) {
    new ApplicationAdaptor(this, requests_);
    new StatusAdaptor(this, requests_);
  }

 private:
  const ApplicationRequests requests_;
};

void later(QObject* object, const std::function<void()>& request) {
  if (request) QTimer::singleShot(0, object, request);
}

}  // namespace

ApplicationAdaptor::ApplicationAdaptor(QObject* parent, const ApplicationRequests& requests)
    : QDBusAbstractAdaptor(parent), requests_(requests) {}

void ApplicationAdaptor::Activate(const QVariantMap&) {
  later(this, requests_.reopen);
}

void ApplicationAdaptor::Open(const QStringList& addresses, const QVariantMap&) {
  std::vector<std::filesystem::path> files;
  for (const auto& each : addresses) {
    const QUrl url(each);
    if (url.isLocalFile()) {
      files.emplace_back(url.toLocalFile().toStdString());
    } else {
      logWarning("WARNING: #oPn7url - Only files of this computer can be opened.");
    }
  }
  if (!files.empty()) later(this, [open = requests_.open, files] { open(files); });
}

void ApplicationAdaptor::ActivateAction(const QString& name, const QVariantList&, const QVariantMap&) {
  const std::pair<const char*, const std::function<void()>&> actions[] = {
      {"menu", requests_.showMenu},
      {"editor", requests_.showEditor},
      {"settings", requests_.showSettings},
      {"quit", requests_.quit}};
  for (const auto& [action, request] : actions) {
    if (name == QLatin1String(action)) later(this, request);
  }
}

StatusAdaptor::StatusAdaptor(QObject* parent, const ApplicationRequests& requests)
    : QDBusAbstractAdaptor(parent), requests_(requests) {}

QString StatusAdaptor::Status() {
  return QString::fromStdString(requests_.status());
}

QStringList StatusAdaptor::Obstacles() {
  QStringList list;
  for (const auto& each : requests_.obstacles()) list.append(QString::fromStdString(each));
  return list;
}

ApplicationService::ApplicationService(ApplicationRequests requests)
    : object_(std::make_unique<ServedObject>(std::move(requests))) {
  auto bus = QDBusConnection::sessionBus();
  if (!bus.registerObject(QLatin1String(kServicePath), object_.get()) ||
      !bus.registerService(QLatin1String(kServiceName))) {
    logWarning("WARNING: #bUs5srv - The commands menu, quit and status cannot reach this Quorlo: " +
               (bus.isConnected() ? std::string("another process has its name on the session bus")
                                  : std::string("there is no session bus")));
  }
}

ApplicationService::~ApplicationService() {
  auto bus = QDBusConnection::sessionBus();
  bus.unregisterService(QLatin1String(kServiceName));
  bus.unregisterObject(QLatin1String(kServicePath));
}

}  // namespace quorlo
