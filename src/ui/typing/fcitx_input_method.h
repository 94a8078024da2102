#pragma once

#include <QDBusServiceWatcher>
#include <QObject>
#include <QString>

namespace quorlo {

// Follows which input method of fcitx5 the user types with. fcitx5 tells only the program with the focus
// (CurrentIM, a signal sent to it alone), so this listens in on that one signal of the session bus, and only
// while fcitx5 runs. Starts nothing. Main thread; needs the QCoreApplication.
class FcitxInputMethod final : public QObject {
  Q_OBJECT

 public:
  FcitxInputMethod();
  ~FcitxInputMethod() override;

  // Its name, "pinyin" for instance; empty while fcitx5 does not run or types the keys of a keyboard layout.
  const QString& inputMethod() const { return inputMethod_; }
  Q_SIGNAL void changed();

 private:
  void setInputMethod(const QString& name);
  void begin();
  void end();
  void askForCurrent();
  Q_SLOT void currentChanged(const QString& title, const QString& name, const QString& language);

  QDBusServiceWatcher runs_;
  QString inputMethod_;
};

}  // namespace quorlo
