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

std::unique_ptr<GuardProcess> GuardProcess::start(const std::filesystem::path& program,
                                                  const std::string& display, xcb_window_t window,
                                                  xcb_atom_t messageType) {
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
  const std::string atomText = std::to_string(messageType);
  std::array<std::string, 4> words{path, display, windowText, atomText};
  std::array<char*, 5> arguments{words[0].data(), words[1].data(), words[2].data(), words[3].data(), nullptr};
  pid_t process = 0;
  const int failure = posix_spawn(&process, path.c_str(), &actions, &attributes, arguments.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  if (failure != 0) {
    close(ends[0]);
    logWarning("The keyboard guard " + path + " cannot be started: " + std::strerror(failure) + ".");
    return nullptr;
  }
  return std::unique_ptr<GuardProcess>(new GuardProcess(process, ends[0]));
}

GuardProcess::~GuardProcess() {
  kill(process_, SIGKILL);
  while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
  }
  close(socket_);
}

bool GuardProcess::waitUntilReadable(std::chrono::milliseconds atMost) const {
  pollfd readable{socket_, POLLIN, 0};
  return poll(&readable, 1, static_cast<int>(atMost.count())) == 1;
}

xcb_window_t GuardProcess::readWindow() const {
  xcb_window_t window = XCB_WINDOW_NONE;
  const auto size = recv(socket_, &window, sizeof window, MSG_DONTWAIT);
  return size == sizeof window ? window : xcb_window_t{XCB_WINDOW_NONE};
}

}  // namespace quorlo
