#include "app/shell/debug_mode.h"

#include "app/settings/settings_controller.h"
#include "base/log.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <utility>

namespace quorlo {
namespace {

constexpr double kLongestSeconds = 86400.0;

}  // namespace

DebugMode::DebugMode(Dependencies dependencies) : use_(std::move(dependencies)) {
  settingsObservation_ = use_.settings.observe([this](Setting changed) {
    if (changed == Setting::debugModeEnabled) settingDidChange();
  });
  if (use_.settings.debugModeEnabled() && !isExpired()) begin();
}

DebugMode::~DebugMode() {
  if (isOn_) end();
}

// Negative, as the interval from now back to when debug mode was switched on.
double DebugMode::passedTime() const {
  return std::chrono::duration<double>(use_.settings.debugEnabledDate() - use_.now()).count();
}

bool DebugMode::isExpired() const {
  return passedTime() < -kLongestSeconds;
}

void DebugMode::expire() {
  if (!use_.settings.debugModeEnabled() || !isExpired()) return;
  logInfo(fmt::format("Automatically deactivating Debug mode after 24 hours. passedTime: {}", passedTime()));
  use_.settings.setDebugModeEnabled(false);
}

void DebugMode::settingDidChange() {
  const bool isToBeOn = use_.settings.debugModeEnabled();
  if (isToBeOn == isOn_) return;
  if (!isToBeOn) return end();
  use_.settings.setDebugEnabledDate(use_.now());
  begin();
}

void DebugMode::begin() {
  isOn_ = true;
  setDebugLogging(true);
  use_.allowCoreDumps(true);
  const auto file = use_.dataDirectory / "Quorlo.log";
  logInfo("The Quorlo log can now be found here: " + file.string());
  logFile_ = use_.reopenStandardError(file);
}

void DebugMode::end() {
  isOn_ = false;
  setDebugLogging(false);
  use_.allowCoreDumps(false);
  logFile_.reset();
}

Subscription reopenStandardError(const std::filesystem::path& file) {
  std::error_code ignored;  // opening says it
  std::filesystem::create_directories(file.parent_path(), ignored);
  const int log = open(file.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
  if (log < 0) {
    logError("ERROR: #dBg5log - Cannot open " + file.string() + ": " + std::strerror(errno));
    return {};
  }
  std::fflush(stderr);
  const int former = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
  dup2(log, STDERR_FILENO);
  close(log);
  return Subscription([former] {
    if (former < 0) return;
    std::fflush(stderr);
    dup2(former, STDERR_FILENO);
    close(former);
  });
}

}  // namespace quorlo
