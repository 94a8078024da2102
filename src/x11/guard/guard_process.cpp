#include "x11/guard/guard_process.h"

#include "base/log.h"

#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>

namespace quorlo {

namespace {

constexpr std::chrono::milliseconds kPatience{1000};

}  // namespace

std::unique_ptr<GuardProcess> GuardProcess::start(const std::filesystem::path& program,
                                                  const std::string& display, std::uint32_t window,
                                                  std::uint32_t askAtom) {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) return nullptr;

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDIN_FILENO);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  // In a session of its own it outlives signals sent to this program's group: its work begins then.
  sigset_t none;
  sigemptyset(&none);
  posix_spawnattr_setsigmask(&attributes, &none);
  sigset_t all;
  sigfillset(&all);
  posix_spawnattr_setsigdefault(&attributes, &all);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

  const std::string path = program;
  const std::string windowText = std::to_string(window);
  const std::string atomText = std::to_string(askAtom);
  std::array<std::string, 4> words{path, display, windowText, atomText};
  std::array<char*, 5> arguments{words[0].data(), words[1].data(), words[2].data(), words[3].data(), nullptr};
  pid_t process = 0;
  const int failure = posix_spawn(&process, path.c_str(), &actions, &attributes, arguments.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  if (failure != 0) {
    close(ends[0]);
    logWarning("The keyboard guard " + path + " cannot be started: " + std::strerror(failure) +
               ". Expansion works without it, but should Quorlo ever hang, the keyboard would hang with it.");
    return nullptr;
  }
  std::unique_ptr<GuardProcess> guard(new GuardProcess(process, ends[0]));
  // No key may be grabbed before the guard sees keys.
  pollfd ready{ends[0], POLLIN, 0};
  char sign = 0;
  if (poll(&ready, 1, static_cast<int>(kPatience.count())) != 1 || read(ends[0], &sign, 1) != 1) {
    logWarning("The keyboard guard " + path +
               " does not work. Expansion works without it, but should Quorlo "
               "ever hang, the keyboard would hang with it.");
    return nullptr;
  }
  return guard;
}

GuardProcess::~GuardProcess() {
  close(socket_);
  while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
  }
}

void GuardProcess::answered(std::uint32_t time) {
  // A full socket or a dead guard is no reason to hold up a key.
  send(socket_, &time, sizeof time, MSG_NOSIGNAL | MSG_DONTWAIT);
}

}  // namespace quorlo
