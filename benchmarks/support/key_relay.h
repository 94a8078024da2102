#pragma once

#include <xcb/xcb.h>

#include <sys/types.h>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <thread>

namespace quorlo {

// The least that a tap of this kind can do: a thread that grabs the keyboards and presses their keys again by
// XTEST. What its thread costs is the floor of Quorlo's.
class KeyRelay {
 public:
  // Throws std::runtime_error when no keyboard can be grabbed.
  explicit KeyRelay(const std::string& display);
  ~KeyRelay();
  KeyRelay(const KeyRelay&) = delete;
  KeyRelay& operator=(const KeyRelay&) = delete;

  // Of the thread so far, in microseconds.
  double processorTime() const;

 private:
  int grabKeyboards();
  void run();

  std::shared_ptr<xcb_connection_t> connection_;
  std::uint8_t inputOpcode_ = 0;
  pid_t threadId_ = 0;
  std::thread thread_;
};

}  // namespace quorlo
