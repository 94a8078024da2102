#pragma once

#include "base/log.h"

#include <string>
#include <vector>

namespace quorlo {

// The lines that are logged while it lives.
class CapturedLog {
 public:
  const std::vector<std::string>& lines() const { return lines_; }

  std::size_t count(std::string_view part) const {
    std::size_t count = 0;
    for (const auto& line : lines_) count += line.find(part) != std::string::npos ? 1 : 0;
    return count;
  }

 private:
  std::vector<std::string> lines_;
  Subscription redirection_ =
      redirectLog([this](LogLevel, std::string_view line) { lines_.emplace_back(line); });
};

}  // namespace quorlo
