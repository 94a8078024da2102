#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace quorlo {

// The other end of quorlo-keyboard-guard: a process that sees every physical key press, is told here that
// it was dealt with, and ends this process's X client when it was not within 500 ms, so that a keyboard
// grabbed by a program that hangs or is stopped works on.
class GuardProcess {
 public:
  // Null when the program cannot be started. `window` is a window of the client that is to be ended; the
  // guard asks it for an answer by a client message of type `askAtom` that names a time.
  static std::unique_ptr<GuardProcess> start(const std::filesystem::path& program, const std::string& display,
                                             std::uint32_t window, std::uint32_t askAtom);
  // The guard ends by itself.
  ~GuardProcess();
  GuardProcess(const GuardProcess&) = delete;
  GuardProcess& operator=(const GuardProcess&) = delete;

  // Every key press up to this server time was dealt with.
  void answered(std::uint32_t time);

 private:
  GuardProcess(pid_t process, int socket) : process_(process), socket_(socket) {}

  pid_t process_;
  int socket_;
};

}  // namespace quorlo
