#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

namespace quorlo {

// When the process crashes, a report is left in `directory`: the version, the signal, the stack and the
// tags of the log lines before, nothing that the user typed or keeps in the library. Nothing is sent
// anywhere. The process then ends by the signal as it would have. Call once, on the main thread.
//
// Overflows of other threads' stacks leave no report: only the main thread has a stack of its own for this.
void reportCrashes(const std::filesystem::path& directory, std::string_view version);

// The report of the last run, if it left one that has not been mentioned yet: moved to a name of its own,
// which is returned. Older reports than the last ten are removed.
std::optional<std::filesystem::path> takeCrashReport(const std::filesystem::path& directory);

}  // namespace quorlo
