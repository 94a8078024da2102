#pragma once

#include "base/result.h"
#include "platform/insertion/insertion_table.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace quorlo {

// The table by application with the user's entries: the files `applications` and, from earlier versions,
// `terminals` of the settings folder (docs/formats.md). Both may be missing. They are read again when asked
// for after a change by any program. Main thread.
class InsertionSettings {
 public:
  explicit InsertionSettings(std::filesystem::path directory);

  // Valid until the next call. Costs a look at the files' dates. Lines that do not count are logged once.
  const InsertionTable& table();
  // The user's own, as the file has them.
  const std::vector<InsertionEntry>& entries();
  // Of lines that do not count; each names the file and the line, and says what to write.
  const std::vector<Error>& problems();

  // Each takes effect at once. After an error nothing has changed.
  Status set(const InsertionEntry& entry);
  Status remove(std::string_view application);

 private:
  // Tells one content of a file from another.
  using Version = std::tuple<std::uint64_t, std::int64_t, std::int64_t, std::int64_t>;

  static Version versionOf(const std::filesystem::path& file);
  void readAgain();
  Status write(const std::string& text);

  std::filesystem::path directory_;
  std::filesystem::path applications_;
  std::filesystem::path terminals_;
  std::pair<Version, Version> versions_;
  std::vector<InsertionEntry> entries_;
  std::vector<Error> problems_;
  InsertionTable table_;
};

}  // namespace quorlo
