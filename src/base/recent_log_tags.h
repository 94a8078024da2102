#pragma once

#include <cstddef>
#include <string_view>

namespace quorlo {

// The tags of the lines that were logged last ("#288frw" of "ERROR: #288frw; Couldn't fetch ..."), for the
// report of a crash. Nothing else of a line is kept: the rest may name what is the user's.
//
// Noted under the log's lock. Reading takes no lock and allocates nothing, so that a signal handler can; a
// tag that is being written meanwhile may come out garbled.
class RecentLogTags {
 public:
  static constexpr std::size_t kCount = 16;
  static constexpr std::size_t kLongest = 31;  // bytes

  void note(std::string_view line);

  // The tag `age` lines before the newest; empty when there were not so many.
  std::string_view tag(std::size_t age) const;

 private:
  char tags_[kCount][kLongest + 1] = {};
  std::size_t noted_ = 0;
};

// What has been logged in this process. May be called in a signal handler.
const RecentLogTags& recentLogTags();

}  // namespace quorlo
