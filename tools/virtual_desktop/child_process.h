#pragma once

#include <sys/types.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

using Variables = std::map<std::string, std::string>;

// The environment of this process with the given variables set; an empty value removes the variable.
std::vector<std::string> environmentWith(const Variables& changes);

struct Command {
  std::vector<std::string> words;  // the program, found through PATH, and its arguments
  Variables variables;             // on top of this process's environment; an empty value removes one
  std::filesystem::path output;    // receives standard output and standard error; empty: inherited
  int inheritedFd = -1;            // stays open in the child under the same number
  int deathSignal = SIGKILL;       // sent to the child if this process dies
};

// A running program in a process group of its own; the group is ended on destruction, and by the kernel if
// this process is killed. Used from one thread.
class ChildProcess {
 public:
  // Throws std::runtime_error when the program cannot be started.
  explicit ChildProcess(const Command& command);
  ~ChildProcess();
  ChildProcess(ChildProcess&& other) noexcept;
  ChildProcess& operator=(ChildProcess&&) = delete;

  pid_t pid() const { return pid_; }
  bool running();
  // The exit status, 128 + signal when killed; nothing while it runs.
  std::optional<int> exitStatus();
  void signal(int number) const;
  // Asks to end, and kills after two seconds.
  void stop();
  // Waits for the end; throws std::runtime_error when it does not come.
  int waitForEnd(std::chrono::milliseconds patience);

 private:
  pid_t pid_ = -1;
  std::optional<int> exitStatus_;
};

// Runs to the end; throws std::runtime_error, with what the program wrote, unless it ends with status 0.
void runProgram(Command command);

}  // namespace quorlo
