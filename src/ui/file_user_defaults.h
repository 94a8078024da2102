#pragma once

#include "base/observers.h"
#include "platform/user_defaults.h"
#include "ui/defaults_file.h"

#include <array>
#include <filesystem>
#include <memory>
#include <string>

class QFileSystemWatcher;
class QTimer;

namespace quorlo {

// The settings in two files of one directory: settings.json, and shared-settings.json for the domain of
// the application group. Values are held in memory. Writes reach the disk at the next turn of the event
// loop or at destruction; changes by others are noticed by file watches. A file that turns unreadable
// leaves the values as they are; one that is unreadable at the start counts as empty. Either is logged,
// and kept when it has to be written. Needs the QCoreApplication.
class FileUserDefaults final : public UserDefaults {
 public:
  explicit FileUserDefaults(const std::filesystem::path& directory);
  ~FileUserDefaults() override;

  const DefaultsValue* value(DefaultsDomain domain, std::string_view key) const override;
  void setValue(DefaultsDomain domain, std::string_view key, DefaultsValue value) override;
  void removeValue(DefaultsDomain domain, std::string_view key) override;
  Subscription observeExternalChanges(Observer observer) override;

  // Writes what is not on disk yet.
  void synchronize();

 private:
  struct Domain {
    DefaultsFile file;
    DefaultsValues values;
    DefaultsChanges unwritten;
    std::string problem;  // of the last read; logged once
  };

  Domain& domainOf(DefaultsDomain domain);
  const Domain& domainOf(DefaultsDomain domain) const;
  void readAgain();
  void readAgain(DefaultsDomain name);
  void watch();

  std::filesystem::path directory_;
  std::array<Domain, 2> domains_;
  Observers<DefaultsDomain, const std::string&> observers_;
  std::unique_ptr<QFileSystemWatcher> watcher_;
  std::unique_ptr<QTimer> writeTimer_;
  std::unique_ptr<QTimer> readTimer_;
};

}  // namespace quorlo
