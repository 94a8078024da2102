#include "program/single_instance.h"

#include <QLockFile>
#include <QStandardPaths>
#include <QString>

#include <utility>

namespace quorlo {

SingleInstance::SingleInstance(std::unique_ptr<QLockFile> lock) : lock_(std::move(lock)) {}
SingleInstance::~SingleInstance() = default;

Result<std::unique_ptr<SingleInstance>> SingleInstance::acquire(const std::string& display,
                                                                std::chrono::milliseconds patience) {
  auto directory = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
  if (directory.isEmpty()) directory = QStandardPaths::writableLocation(QStandardPaths::TempLocation);
  auto name = QString::fromStdString(display);
  name.replace(QLatin1Char('/'), QLatin1Char('_'));
  const auto path = directory + QStringLiteral("/quorlo-") + name + QStringLiteral(".lock");

  auto lock = std::make_unique<QLockFile>(path);
  lock->setStaleLockTime(std::chrono::milliseconds(0));  // only the end of its process frees it
  if (lock->tryLock(patience)) return std::unique_ptr<SingleInstance>(new SingleInstance(std::move(lock)));

  qint64 process = 0;
  QString host;
  QString application;
  if (lock->error() == QLockFile::LockFailedError && lock->getLockInfo(&process, &host, &application)) {
    return Error{"Quorlo is already running on display " + display + " (process " + std::to_string(process) +
                 "). End that one first: kill " + std::to_string(process)};
  }
  return Error{"Cannot write the lock file " + path.toStdString() +
               ". Make its folder writable, or set XDG_RUNTIME_DIR to one that is."};
}

}  // namespace quorlo
