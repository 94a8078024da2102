#pragma once

#include <sys/types.h>
#include <xcb/xcb.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

namespace quorlo {

// The other end of quorlo-keyboard-guard: a process that sees every physical key press, is told of each by
// messages to its window that it was dealt with (see PressReport), and ends this process's X client when it
// was not within 500 ms, so that a keyboard grabbed by a program that hangs or is stopped works on.
class GuardProcess {
 public:
  // Null when the program cannot be started. `window` is a window of the client that is to be ended; the
  // guard asks it about a press by a message of the same type.
  static std::unique_ptr<GuardProcess> start(const std::filesystem::path& program, const std::string& display,
                                             xcb_window_t window, xcb_atom_t messageType);
  // Ends the guard, which has nothing to do without the tap, also one that hangs or is stopped.
  ~GuardProcess();
  GuardProcess(const GuardProcess&) = delete;
  GuardProcess& operator=(const GuardProcess&) = delete;

  // Becomes readable when the guard sees keys, and when it has ended.
  int descriptor() const { return socket_; }
  bool waitUntilReadable(std::chrono::milliseconds atMost) const;
  // The window that takes reports; XCB_WINDOW_NONE when the guard has ended. Call when readable.
  xcb_window_t readWindow() const;

 private:
  GuardProcess(pid_t process, int socket) : process_(process), socket_(socket) {}

  pid_t process_;
  int socket_;
};

}  // namespace quorlo
