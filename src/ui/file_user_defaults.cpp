#include "ui/file_user_defaults.h"

#include "base/log.h"

#include <QFileSystemWatcher>
#include <QString>
#include <QTimer>

#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

// Known to the user alone, like the files in it.
void makeDirectory(const fs::path& directory) {
  std::error_code failure;
  if (fs::create_directories(directory, failure)) {
    fs::permissions(directory, fs::perms::owner_all, failure);
  }
  if (failure) {
    logError("ERROR: The settings directory " + directory.string() + " cannot be made: " + failure.message());
  }
}

bool isEmptyFile(const fs::path& file) {
  std::error_code failure;
  return fs::file_size(file, failure) == 0 && !failure;
}

}  // namespace

FileUserDefaults::FileUserDefaults(const fs::path& directory)
    : directory_(directory),
      domains_{Domain{DefaultsFile(directory / "settings.json"), {}, {}, {}},
               Domain{DefaultsFile(directory / "shared-settings.json"), {}, {}, {}}},
      watcher_(std::make_unique<QFileSystemWatcher>()),
      writeTimer_(std::make_unique<QTimer>()),
      readTimer_(std::make_unique<QTimer>()) {
  makeDirectory(directory_);
  for (auto* const timer : {writeTimer_.get(), readTimer_.get()}) timer->setSingleShot(true);
  QObject::connect(writeTimer_.get(), &QTimer::timeout, writeTimer_.get(), [this] { synchronize(); });
  QObject::connect(readTimer_.get(), &QTimer::timeout, readTimer_.get(), [this] { readAgain(); });
  // One write by others makes several notices.
  const auto readSoon = [this] { readTimer_->start(0); };
  QObject::connect(watcher_.get(), &QFileSystemWatcher::fileChanged, readTimer_.get(), readSoon);
  QObject::connect(watcher_.get(), &QFileSystemWatcher::directoryChanged, readTimer_.get(), readSoon);
  watch();
  readAgain();
}

FileUserDefaults::~FileUserDefaults() {
  synchronize();
}

const DefaultsValue* FileUserDefaults::value(DefaultsDomain domain, std::string_view key) const {
  const auto& values = domainOf(domain).values;
  const auto found = values.find(key);
  return found == values.end() ? nullptr : &found->second;
}

void FileUserDefaults::setValue(DefaultsDomain domain, std::string_view key, DefaultsValue value) {
  // What memory and disk hold must be equal, or the own write would look like another's.
  auto storable = storableValue(value);
  if (!storable) return removeValue(domain, key);
  auto& [file, values, unwritten, problem] = domainOf(domain);
  values.insert_or_assign(std::string(key), *storable);
  unwritten.insert_or_assign(std::string(key), std::move(storable));
  writeTimer_->start(0);
}

void FileUserDefaults::removeValue(DefaultsDomain domain, std::string_view key) {
  auto& [file, values, unwritten, problem] = domainOf(domain);
  values.erase(std::string(key));
  unwritten.insert_or_assign(std::string(key), std::nullopt);
  writeTimer_->start(0);
}

Subscription FileUserDefaults::observeExternalChanges(Observer observer) {
  return observers_.add(std::move(observer));
}

void FileUserDefaults::synchronize() {
  writeTimer_->stop();
  for (auto& [file, values, unwritten, problem] : domains_) {
    if (unwritten.empty()) continue;
    makeDirectory(directory_);
    if (const auto written = file.write(values, unwritten); written) {
      unwritten.clear();
    } else {
      logError("ERROR: The settings could not be written and hold only until Quorlo ends. " +
               written.error().message);
    }
  }
  watch();
}

FileUserDefaults::Domain& FileUserDefaults::domainOf(DefaultsDomain domain) {
  return domains_[domain == DefaultsDomain::standard ? 0 : 1];
}

const FileUserDefaults::Domain& FileUserDefaults::domainOf(DefaultsDomain domain) const {
  return domains_[domain == DefaultsDomain::standard ? 0 : 1];
}

void FileUserDefaults::readAgain() {
  watch();
  readAgain(DefaultsDomain::standard);
  readAgain(DefaultsDomain::appGroup);
}

void FileUserDefaults::readAgain(DefaultsDomain name) {
  auto& [file, values, unwritten, problem] = domainOf(name);
  auto read = file.read();
  if (!read) {
    // An empty file may be one that an editor is just writing.
    if (isEmptyFile(file.path()) && !values.empty()) return;
    if (std::exchange(problem, read.error().message) != read.error().message) {
      logError("ERROR: The settings file cannot be read; " +
               std::string(values.empty() ? "the defaults apply. " : "the settings stay as they were. ") +
               read.error().message);
    }
    return;
  }
  problem.clear();
  auto present = std::move(read).value();
  for (const auto& [key, value] : unwritten) {
    if (value) {
      present.insert_or_assign(key, *value);
    } else {
      present.erase(key);
    }
  }
  std::vector<std::string> changed;
  for (const auto& [key, value] : present) {
    const auto before = values.find(key);
    if (before == values.end() || before->second != value) changed.push_back(key);
  }
  for (const auto& [key, value] : values) {
    if (!present.contains(key)) changed.push_back(key);
  }
  values = std::move(present);
  for (const auto& key : changed) observers_.notify(name, key);
}

// A watch of a file ends when the file is replaced, and there is none while the file is missing; that of
// the directory tells of both.
void FileUserDefaults::watch() {
  QStringList paths{QString::fromStdString(directory_.string())};
  for (const auto& domain : domains_) paths << QString::fromStdString(domain.file.path().string());
  const auto watched = watcher_->files() + watcher_->directories();
  for (const auto& path : paths) {
    std::error_code failure;
    if (!watched.contains(path) && fs::exists(path.toStdString(), failure)) watcher_->addPath(path);
  }
}

}  // namespace quorlo
