#pragma once

#include "virtual_desktop/child_process.h"

#include <filesystem>
#include <string>
#include <vector>

namespace quorlo {

// A real Xorg on a display that was free, with a screen in memory (driver "dummy") and, instead of hardware,
// two keyboards and an absolute pointer that obey whoever connects to their sockets (driver "inputtest").
// Needs no hardware and no privileges. The directory must outlive it.
class XorgServer {
 public:
  // Returns when clients can connect. Throws std::runtime_error with the end of the server's log.
  XorgServer(const std::filesystem::path& directory, const std::vector<std::string>& moreArguments);

  const std::string& display() const { return display_; }  // ":3"
  bool running() { return process_.running(); }
  // As when the server crashes or the session ends.
  void stop() { process_.stop(); }

  static constexpr int kWidth = 1280;
  static constexpr int kHeight = 800;
  static constexpr const char* kKeyboardSocket = "keyboard";
  static constexpr const char* kSecondKeyboardSocket = "keyboard2";
  static constexpr const char* kPointerSocket = "pointer";

 private:
  int displayPipe_[2];
  ChildProcess process_;
  std::string display_;
};

}  // namespace quorlo
