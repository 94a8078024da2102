#pragma once

#include "app/settings/stored_user_defaults.h"

#include <filesystem>
#include <memory>

class QFileSystemWatcher;
class QTimer;

namespace quorlo {

// The stored settings of a running program. Writes reach the disk at the next turn of the event loop or at
// destruction; changes by others are noticed by file watches. Needs the QCoreApplication.
class FileUserDefaults final : public StoredUserDefaults {
 public:
  explicit FileUserDefaults(const std::filesystem::path& directory);
  ~FileUserDefaults() override;

 private:
  void valueHasChanged() override;
  void write();
  void watch();

  std::unique_ptr<QFileSystemWatcher> watcher_;
  std::unique_ptr<QTimer> writeTimer_;
  std::unique_ptr<QTimer> readTimer_;
};

}  // namespace quorlo
