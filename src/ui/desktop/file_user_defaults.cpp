#include "ui/desktop/file_user_defaults.h"

#include "base/log.h"

#include <QFileSystemWatcher>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <system_error>

namespace quorlo {

namespace fs = std::filesystem;

FileUserDefaults::FileUserDefaults(const fs::path& directory)
    : StoredUserDefaults(directory),
      watcher_(std::make_unique<QFileSystemWatcher>()),
      writeTimer_(std::make_unique<QTimer>()),
      readTimer_(std::make_unique<QTimer>()) {
  for (auto* const timer : {writeTimer_.get(), readTimer_.get()}) timer->setSingleShot(true);
  QObject::connect(writeTimer_.get(), &QTimer::timeout, writeTimer_.get(), [this] { write(); });
  QObject::connect(readTimer_.get(), &QTimer::timeout, readTimer_.get(), [this] {
    watch();
    readAgain();
  });
  // One write by others makes several notices.
  const auto readSoon = [this] { readTimer_->start(0); };
  QObject::connect(watcher_.get(), &QFileSystemWatcher::fileChanged, readTimer_.get(), readSoon);
  QObject::connect(watcher_.get(), &QFileSystemWatcher::directoryChanged, readTimer_.get(), readSoon);
  if (const auto made = makeSettingsDirectory(directory); !made) logError("ERROR: " + made.error().message);
  watch();
  readAgain();  // what was written before the watch began
}

FileUserDefaults::~FileUserDefaults() {
  write();
}

void FileUserDefaults::valueHasChanged() {
  writeTimer_->start(0);
}

void FileUserDefaults::write() {
  writeTimer_->stop();
  if (const auto written = synchronize(); !written) {
    logError("ERROR: The settings could not be written and hold only until Quorlo ends. " +
             written.error().message);
  }
  watch();
}

// A watch of a file ends when the file is replaced, and there is none while the file is missing; that of
// the directory tells of both.
void FileUserDefaults::watch() {
  QStringList paths{QString::fromStdString(directory().string())};
  for (const auto& file : files()) paths << QString::fromStdString(file.string());
  const auto watched = watcher_->files() + watcher_->directories();
  for (const auto& path : paths) {
    std::error_code failure;
    if (!watched.contains(path) && fs::exists(path.toStdString(), failure)) watcher_->addPath(path);
  }
}

}  // namespace quorlo
