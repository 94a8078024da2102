#pragma once

#include "base/result.h"

#include <chrono>
#include <memory>
#include <string>

class QLockFile;

namespace quorlo {

// The right to be the one Quorlo of a display; given up on destruction, and by the system when the
// process ends otherwise.
class SingleInstance {
 public:
  // Waits as long as `patience` for another one that is ending. An error that names the running one when
  // there is one.
  static Result<std::unique_ptr<SingleInstance>> acquire(const std::string& display,
                                                         std::chrono::milliseconds patience);
  ~SingleInstance();

 private:
  explicit SingleInstance(std::unique_ptr<QLockFile> lock);

  std::unique_ptr<QLockFile> lock_;
};

}  // namespace quorlo
