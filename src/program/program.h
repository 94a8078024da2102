#pragma once

#include "base/result.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quorlo {

// The running program: the desktop's adapters, then one of each object, in the order in which they depend
// on each other. Made on the main thread after the QApplication, destroyed before it.
class Program {
 public:
  struct Options {
    std::vector<std::filesystem::path> files;      // to open
    std::optional<std::filesystem::path> library;  // to take into the user's own before anything else
    std::optional<bool> abbreviations;             // the setting to begin with, when given
    std::function<void(int status)> quit;          // ends the event loop
  };

  // Null when a Quorlo runs on this display already; it has been asked to do what the options say. An error
  // when the display, the library, or what is to be added to it cannot be had.
  static Result<std::unique_ptr<Program>> start(const Options& options);
  ~Program();

  // Saves and quits, unless the user is asked about something and wants neither.
  void terminate();
  // Saves, and asks the user if that fails; false when the user wants to go on.
  bool mayEnd();

 private:
  struct Ground;
  struct Parts;
  explicit Program(std::unique_ptr<Parts> parts);

  std::unique_ptr<Parts> parts_;
};

}  // namespace quorlo
