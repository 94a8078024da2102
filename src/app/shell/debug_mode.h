#pragma once

#include "base/date.h"
#include "base/subscription.h"

#include <filesystem>
#include <functional>

namespace quorlo {

class SettingsController;

// While debug mode is on, debug lines are logged, the log goes to the file "Quorlo.log", and a crash may
// leave a core dump. Switches itself off at the first start 24 hours later. One instance; main thread.
class DebugMode {
 public:
  // Sends what the process writes to standard error to the end of the file, which is made if need be, until
  // the subscription ends.
  using ReopenStandardError = std::function<Subscription(const std::filesystem::path& file)>;

  struct Dependencies {
    SettingsController& settings;
    std::function<Date()> now;
    std::filesystem::path dataDirectory;
    ReopenStandardError reopenStandardError;
    std::function<void(bool)> allowCoreDumps;
  };

  // The references must outlive this. Begins at once where debug mode is on and has not expired.
  explicit DebugMode(Dependencies dependencies);
  DebugMode(const DebugMode&) = delete;
  DebugMode& operator=(const DebugMode&) = delete;
  ~DebugMode();

  // Switches debug mode off if it is on for more than 24 hours.
  void expire();

 private:
  double passedTime() const;
  bool isExpired() const;
  void settingDidChange();
  void begin();
  void end();

  Dependencies use_;
  bool isOn_ = false;
  Subscription logFile_;
  Subscription settingsObservation_;
};

// The one for the program.
Subscription reopenStandardError(const std::filesystem::path& file);

}  // namespace quorlo
