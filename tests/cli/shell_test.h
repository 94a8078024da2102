#pragma once

#include "fakes/temporary_directory.h"

#include <gtest/gtest.h>

#include <string>

namespace quorlo {

// A user at a shell, with a home of its own and the real program in the PATH, without display and session
// bus, and with German as the language.
class ShellTest : public ::testing::Test {
 protected:
  struct Outcome {
    int status;  // the exit status; 128 and the signal's number for a process that a signal has ended
    std::string out;
    std::string err;
  };

  // By bash, in the home.
  Outcome run(const std::string& script) const;

  // What the script prints; it and the exit status are as expected.
  std::string out(const std::string& script) const;

  // What is said on standard error by a script that fails with the status.
  std::string complaint(const std::string& script, int status = 1) const;

  std::filesystem::path file(const std::string& name, const std::string& content) const;
  std::string content(const std::string& name) const;

  TemporaryDirectory home_{TemporaryDirectory::quickParent()};
};

}  // namespace quorlo
