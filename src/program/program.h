#pragma once

#include "base/result.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace quorlo {

// The running program: the desktop's adapters, then one of each object, in the order in which they depend
// on each other. Made on the main thread after the QApplication, destroyed before it.
class Program {
 public:
  struct Options {
    std::optional<std::filesystem::path> library;  // else the user's own, else the starter library
    std::optional<bool> abbreviations;             // the setting to begin with, when given
    std::function<void(int status)> quit;          // ends the event loop
  };

  // An error when the display, the library or the only place there is for a Quorlo cannot be had.
  static Result<std::unique_ptr<Program>> start(const Options& options);
  ~Program();

 private:
  struct Ground;
  struct Parts;
  explicit Program(std::unique_ptr<Parts> parts);

  std::unique_ptr<Parts> parts_;
};

}  // namespace quorlo
