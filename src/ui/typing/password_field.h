#pragma once

#include "base/life_token.h"

#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>

#include <cstdint>
#include <memory>

class QDBusMessage;

namespace quorlo {

class BackgroundQueue;
class MainQueue;
class Workspace;
struct AccessibleReference;

// Knows whether the user types into a password field, where programs tell: by the accessibility bus
// (AT-SPI), on which a program announces the part of its window that gets the focus. One question to that
// program follows each announcement, and one the start of a program. The bus is never started, only used
// where it runs. Main thread.
class PasswordField final : public QObject {
  Q_OBJECT

 public:
  // The references must outlive the object.
  PasswordField(MainQueue& queue, BackgroundQueue& background, const Workspace& workspace);
  ~PasswordField() override;

  // Costs no round trip.
  bool hasFocus() const;
  // That may be another answer now; what the workspace tells of may make it another one too.
  Q_SIGNAL void changed();

 private:
  struct Field {
    QString program;  // its name on the bus
    QString path;
    bool operator==(const Field&) const = default;
  };

  void askForAddress();
  void connectTo(const QString& address);
  void connected(const QString& connection);
  void announceInterest();
  void end();
  Q_SLOT void focusChanged(const QDBusMessage& event);
  Q_SLOT void programsChanged(const QDBusMessage& event);
  void askForRole();
  void lookFor(const AccessibleReference& program);
  void focusIsOnPassword(const Field& field);
  void askForProcess();
  void setPassword(bool isPassword);

  MainQueue& queue_;
  BackgroundQueue& background_;
  const Workspace& workspace_;
  QDBusServiceWatcher busRuns_;
  std::unique_ptr<QDBusServiceWatcher> names_;  // on the accessibility bus
  QString connection_;                          // its name in this process; empty without that bus
  int connections_ = 0;
  Field focused_;
  std::int64_t process_ = 0;  // of the focused field's program; 0 until known
  bool isPassword_ = false;
  LifeToken life_;
};

}  // namespace quorlo
