#pragma once

#include "base/subscription.h"

#include <functional>
#include <string>
#include <string_view>

namespace quorlo {

// The program's log: one line per call, to standard error. Any thread.
//
// A call site passes the whole line, its tag included, so that a line in a log can be searched for in
// the source: logError("ERROR: #23854; Couldn't fetch Snippet. " + message). Texts of the user stand in it by
// userText() alone.
void logError(std::string_view line);
void logWarning(std::string_view line);
void logInfo(std::string_view line);

// Written only while debug mode is on.
void logDebug(std::string_view line);
void setDebugLogging(bool on);

// A text of the user (a snippet or a part of it, a title, an abbreviation) as it may stand in a line: itself
// while debug mode is on, otherwise its length, as "(12 characters)". UTF-8.
std::string userText(std::string_view text);

enum class LogLevel { error, warning, info, debug };

// Sends every line to `sink` instead of standard error until the subscription ends; the sink set last
// wins. The sink is called on the logging thread, one call at a time, and must not log.
using LogSink = std::function<void(LogLevel, std::string_view line)>;
Subscription redirectLog(LogSink sink);

}  // namespace quorlo
