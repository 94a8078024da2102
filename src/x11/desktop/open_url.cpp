#include "x11/desktop/open_url.h"

#include "base/log.h"

#include <fmt/format.h>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <string>
#include <thread>

namespace quorlo {

bool isAddress(std::string_view url) {
  const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  const auto isSchemeCharacter = [&](char c) {
    return isLetter(c) || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
  };
  const auto colon = url.find(':');
  if (colon == std::string_view::npos || colon + 1 == url.size() || !isLetter(url.front())) return false;
  return std::ranges::all_of(url.substr(0, colon), isSchemeCharacter) &&
         std::ranges::none_of(url,
                              [](char c) { return static_cast<unsigned char>(c) <= ' ' || c == '\x7f'; });
}

bool openInDesktop(std::string_view url) {
  if (!isAddress(url)) return false;
  std::string program = "xdg-open";
  std::string address(url);
  char* arguments[] = {program.data(), address.data(), nullptr};

  // The child starts with the signals as a program expects them, whatever this one blocks.
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t signals;
  sigemptyset(&signals);
  posix_spawnattr_setsigmask(&attributes, &signals);
  sigfillset(&signals);
  posix_spawnattr_setsigdefault(&attributes, &signals);
  posix_spawnattr_setflags(&attributes,
                           POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
  pid_t child = 0;
  const int failure = posix_spawnp(&child, program.c_str(), nullptr, &attributes, arguments, environ);
  posix_spawnattr_destroy(&attributes);
  if (failure != 0) return false;

  // It lives as long as the program it starts; somebody has to take note of its end.
  std::thread([child, address] {
    int status = 0;
    if (waitpid(child, &status, 0) == child && status != 0) {
      logWarning(fmt::format("WARNING: #x11oU1; xdg-open could not open {}.", address));
    }
  }).detach();
  return true;
}

}  // namespace quorlo
