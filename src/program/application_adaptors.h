#pragma once

#include "program/application_service.h"

#include <QDBusAbstractAdaptor>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace quorlo {

// One interface each of the object on the bus. Every call answers before it is carried out, so that nobody
// waits for a modal alert.
class ApplicationAdaptor final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

 public:
  ApplicationAdaptor(QObject* parent, const ApplicationRequests& requests);

  Q_SLOT void Activate(const QVariantMap& platformData);
  Q_SLOT void Open(const QStringList& addresses, const QVariantMap& platformData);
  Q_SLOT void ActivateAction(const QString& name, const QVariantList& parameter,
                             const QVariantMap& platformData);

 private:
  const ApplicationRequests& requests_;
};

class StatusAdaptor final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.quorlo.Quorlo")

 public:
  StatusAdaptor(QObject* parent, const ApplicationRequests& requests);

  Q_SLOT QString Status();
  Q_SLOT QStringList Obstacles();

 private:
  const ApplicationRequests& requests_;
};

}  // namespace quorlo
