#include "base/log.h"

#include "base/recent_log_tags.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <map>
#include <mutex>
#include <string>

namespace quorlo {
namespace {

struct Log {
  std::mutex mutex;
  RecentLogTags tags;
  std::map<std::uint64_t, LogSink> sinks;
  std::uint64_t lastSink = 0;
  std::atomic<bool> debug = false;
};

// Never destroyed: threads may log until the very end of the process.
Log& log() {
  static auto* const instance = new Log;
  return *instance;
}

void write(LogLevel level, std::string_view line) {
  const std::lock_guard lock(log().mutex);
  log().tags.note(line);
  if (!log().sinks.empty()) {
    log().sinks.rbegin()->second(level, line);
    return;
  }
  std::string whole(line);
  whole += '\n';
  std::fwrite(whole.data(), 1, whole.size(), stderr);
}

}  // namespace

const RecentLogTags& recentLogTags() {
  return log().tags;
}

void logError(std::string_view line) {
  write(LogLevel::error, line);
}
void logWarning(std::string_view line) {
  write(LogLevel::warning, line);
}
void logInfo(std::string_view line) {
  write(LogLevel::info, line);
}

void logDebug(std::string_view line) {
  if (log().debug) write(LogLevel::debug, line);
}

void setDebugLogging(bool on) {
  log().debug = on;
}

std::string userText(std::string_view text) {
  if (log().debug) return std::string(text);
  // Every byte but those that continue a character.
  const auto count = std::ranges::count_if(text, [](char byte) { return (byte & 0xC0) != 0x80; });
  return "(" + std::to_string(count) + (count == 1 ? " character)" : " characters)");
}

Subscription redirectLog(LogSink sink) {
  const std::lock_guard lock(log().mutex);
  const auto id = ++log().lastSink;
  log().sinks.emplace(id, std::move(sink));
  return Subscription([id] {
    const std::lock_guard relock(log().mutex);
    log().sinks.erase(id);
  });
}

}  // namespace quorlo
