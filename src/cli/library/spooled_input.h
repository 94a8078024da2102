#pragma once

#include "base/result.h"

#include <filesystem>
#include <string>

namespace quorlo {

class CommandSession;

// Standard input as a file, for as long as this lives: only the user can read it.
class SpooledInput {
 public:
  SpooledInput() = default;
  SpooledInput(const SpooledInput&) = delete;
  SpooledInput& operator=(const SpooledInput&) = delete;
  ~SpooledInput();

  // Reads to the end. The file's name ends in what the content is, or the format where that is not empty
  // ("csv", "json").
  Result<std::filesystem::path> read(CommandSession& session, const std::string& format);

 private:
  std::filesystem::path folder_;
};

}  // namespace quorlo
