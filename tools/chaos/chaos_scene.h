#pragma once

#include "chaos/chaos_target.h"
#include "chaos/typist.h"
#include "virtual_desktop/quorlo_program.h"
#include "virtual_desktop/virtual_desktop.h"

#include <chrono>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace quorlo {

// A desktop with Quorlo, an application and its typist, and the means to disturb them.
class ChaosScene {
 public:
  // The program is Quorlo.
  ChaosScene(const std::string& program, std::mt19937& random);

  VirtualDesktop& desktop() { return desktop_; }
  ChaosTarget& target() { return target_; }
  Typist& typist() { return typist_; }

  int below(int limit) { return std::uniform_int_distribution(0, limit - 1)(random_); }
  template <class T>
  const T& oneOf(const std::vector<T>& choices) {
    return choices[static_cast<std::size_t>(below(static_cast<int>(choices.size())))];
  }

  // Runs a program to its end; whether it succeeds is not looked at.
  void run(std::vector<std::string> words);
  // Starts a program that ends by itself; joinPrograms() waits for it.
  void runBeside(std::vector<std::string> words);
  void joinPrograms();

  // Another program owns the clipboard until the next call.
  ChildProcess& ownClipboard(const std::string& text);
  // The owner ended or hangs: the clipboard is lost.
  void loseClipboard() { clipboard_.reset(); }
  void dropClipboardOwner() { clipboardOwner_.reset(); }
  // Waits until the clipboard holds what was copied last; false when it does not within the patience.
  bool clipboardIsKept();

  pid_t quorlo() { return quorlo_->process().pid(); }
  // 0 when there is none.
  pid_t guard();
  void signalQuorlo(int number);
  void endQuorlo(int number);
  void startQuorlo();
  bool quorloWatches() { return quorlo_->watches(); }
  // Quorlo's log of all starts so far.
  std::string log() const { return earlierLogs_ + quorlo_->log(); }

  // Types until abbreviations expand again; false when they do not within the patience.
  bool settle();

  std::string layout = "us";
  bool stickyKeys = false;

 private:
  std::mt19937& random_;
  std::string program_;
  VirtualDesktop desktop_;
  ChaosTarget target_;
  Typist typist_;
  std::optional<QuorloProgram> quorlo_;
  std::string earlierLogs_;
  std::vector<ChildProcess> programs_;
  xcb_atom_t clipboardAtom_ = XCB_ATOM_NONE;
  std::optional<ChildProcess> clipboardOwner_;
  std::optional<std::string> clipboard_;  // what it should hold, while that is known
};

}  // namespace quorlo
