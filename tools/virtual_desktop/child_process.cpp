#include "virtual_desktop/child_process.h"

#include "virtual_desktop/temp_dir.h"
#include "virtual_desktop/wait.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace quorlo {

namespace {

std::vector<char*> pointers(std::vector<std::string>& words) {
  std::vector<char*> result;
  for (auto& word : words) result.push_back(word.data());
  result.push_back(nullptr);
  return result;
}

}  // namespace

std::vector<std::string> environmentWith(const Variables& changes) {
  std::vector<std::string> result;
  for (char** entry = environ; *entry; ++entry) {
    const std::string variable = *entry;
    if (!changes.contains(variable.substr(0, variable.find('=')))) result.push_back(variable);
  }
  for (const auto& [name, value] : changes) {
    if (!value.empty()) result.push_back(name + "=" + value);
  }
  return result;
}

ChildProcess::ChildProcess(const Command& command) {
  // Everything is made before the fork: after it, only calls that are safe in a signal handler.
  auto words = command.words;
  auto variables = environmentWith(command.variables);
  const auto argv = pointers(words);
  const auto envp = pointers(variables);
  const std::string output = command.output;
  int failure[2];
  if (pipe2(failure, O_CLOEXEC) != 0) throw std::runtime_error("Cannot create a pipe");
  const pid_t parent = getpid();
  pid_ = fork();
  if (pid_ < 0) throw std::runtime_error("Cannot start another process");
  if (pid_ == 0) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, command.deathSignal);
    if (getppid() != parent) _exit(127);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    if (!output.empty()) {
      const int fd = open(output.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
      if (fd >= 0 && dup2(fd, STDOUT_FILENO) >= 0) dup2(fd, STDERR_FILENO);
    }
    if (command.inheritedFd >= 0) fcntl(command.inheritedFd, F_SETFD, 0);
    execvpe(argv[0], argv.data(), envp.data());
    const int error = errno;
    if (write(failure[1], &error, sizeof error) < 0) _exit(126);
    _exit(127);
  }
  setpgid(pid_, pid_);  // in both, so that the group exists whoever runs first
  close(failure[1]);
  int error = 0;
  const auto got = read(failure[0], &error, sizeof error);
  close(failure[0]);
  if (got == sizeof error) {
    waitpid(pid_, nullptr, 0);
    throw std::runtime_error("Cannot run " + command.words.front() + ": " + std::strerror(error));
  }
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : pid_(std::exchange(other.pid_, -1)), exitStatus_(other.exitStatus_) {}

ChildProcess::~ChildProcess() {
  if (pid_ > 0) stop();
}

bool ChildProcess::running() {
  return !exitStatus();
}

std::optional<int> ChildProcess::exitStatus() {
  int status = 0;
  if (!exitStatus_ && waitpid(pid_, &status, WNOHANG) == pid_) {
    exitStatus_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  }
  return exitStatus_;
}

void ChildProcess::signal(int number) const {
  if (!exitStatus_) kill(pid_, number);
}

void ChildProcess::stop() {
  if (running()) {
    kill(-pid_, SIGTERM);
    kill(-pid_, SIGCONT);
    if (!waitUntil([this] { return !running(); }, std::chrono::seconds(2))) {
      kill(-pid_, SIGKILL);
      waitUntil([this] { return !running(); });
    }
  }
  kill(-pid_, SIGKILL);  // what it left behind
}

int ChildProcess::waitForEnd(std::chrono::milliseconds patience) {
  if (!waitUntil([this] { return !running(); }, patience)) {
    throw std::runtime_error("Process " + std::to_string(pid_) + " did not end in time");
  }
  return *exitStatus_;
}

void runProgram(Command command) {
  const TempDir scratch;
  if (command.output.empty()) command.output = scratch / "output";
  ChildProcess process(command);
  const int status = process.waitForEnd(kPatience);
  if (status != 0) {
    throw std::runtime_error(command.words.front() + " ended with status " + std::to_string(status) + ": " +
                             readFile(command.output));
  }
}

}  // namespace quorlo
