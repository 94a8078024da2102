#pragma once

#include "base/observers.h"
#include "base/result.h"
#include "base/subscription.h"

#include <filesystem>
#include <functional>

namespace quorlo {

// Whether the desktop starts the program when the user logs in: an entry in the user's autostart folder
// (freedesktop.org, Desktop Application Autostart). What the user changes in the desktop's own settings
// counts, so the entry is read each time. One instance; main thread.
class LaunchAtLogin {
 public:
  // `autostartDirectory` need not exist. `program` is what the entry starts: an absolute path, or a name
  // that is found in PATH.
  LaunchAtLogin(const std::filesystem::path& autostartDirectory, std::filesystem::path program);

  bool isEnabled() const;
  // An error when the entry cannot be written or removed.
  Status setEnabled(bool on);

  // Told after each successful setEnabled.
  Subscription observe(std::function<void()> observer) { return observers_.add(std::move(observer)); }

 private:
  std::filesystem::path entry_;
  std::filesystem::path program_;
  Observers<> observers_;
};

}  // namespace quorlo
