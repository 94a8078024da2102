#pragma once

#include "base/subscription.h"

#include <functional>
#include <string_view>

namespace quorlo {

// The program's log: one line per call, to standard error. Any thread.
//
// A call site passes the whole line, its tag included, so that a line in a log can be searched for in
// the source: logError("ERROR: #23854; Couldn't fetch Snippet. " + text). Lines never hold text that
// the user typed unless the line's own documentation says so.
void logError(std::string_view line);
void logWarning(std::string_view line);
void logInfo(std::string_view line);

// Written only while debug mode is on.
void logDebug(std::string_view line);
void setDebugLogging(bool on);

enum class LogLevel { error, warning, info, debug };

// Sends every line to `sink` instead of standard error until the subscription ends; the sink set last
// wins. The sink is called on the logging thread, one call at a time, and must not log.
using LogSink = std::function<void(LogLevel, std::string_view line)>;
Subscription redirectLog(LogSink sink);

}  // namespace quorlo
