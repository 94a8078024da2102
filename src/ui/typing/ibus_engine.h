#pragma once

#include "base/life_token.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>

namespace quorlo {

class BackgroundQueue;
class MainQueue;

// Follows which engine of IBus is chosen. IBus has a bus of its own, whose address stands in a file of the
// user's settings; a file that appears or changes is an IBus that has started. Starts nothing. Main thread.
class IbusEngine final : public QObject {
  Q_OBJECT

 public:
  // The references must outlive the object.
  IbusEngine(MainQueue& queue, BackgroundQueue& background);
  ~IbusEngine() override;

  // The engine's name, "libpinyin" for instance; empty while IBus does not run or types the keys of a
  // keyboard layout.
  const QString& inputMethod() const { return inputMethod_; }
  Q_SIGNAL void changed();

 private:
  void setInputMethod(const QString& name);
  void look();
  void watchForTheFile();
  void connected(const QString& connection, const QString& address);
  void disconnect();
  void askForEngine();
  Q_SLOT void engineChanged(const QString& engine);
  Q_SLOT void busEnded();

  MainQueue& queue_;
  BackgroundQueue& background_;
  QFileSystemWatcher files_;
  QString address_;     // of the bus that is followed or being connected to
  QString connection_;  // its name in this process; empty until connected
  QString inputMethod_;
  int connections_ = 0;
  LifeToken life_;
};

}  // namespace quorlo
