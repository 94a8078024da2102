#pragma once

#include "virtual_desktop/virtual_desktop.h"

#include <filesystem>
#include <map>
#include <string>

namespace quorlo {

// The value of a setting as the JSON file holds it, by key: {"AbbreviationsTriggerType", "1"}.
using StoredSettings = std::map<std::string, std::string>;

// Quorlo itself, at work on a virtual desktop. Abbreviations and Auto-Paste are on unless the settings say
// otherwise; the expansion sound is off.
class QuorloProgram {
 public:
  // Writes the settings, starts the program with nothing but a library (the text of a JSON document) and
  // returns once it watches the keyboard. Throws std::runtime_error with what the program wrote.
  QuorloProgram(VirtualDesktop& desktop, const std::string& program, const std::string& library,
                const StoredSettings& settings = {});

  // The same with the library and the settings that are there, after one that has ended.
  enum class Start { waitsUntilItWatches, doesNotWait };
  QuorloProgram(VirtualDesktop& desktop, const std::string& program,
                Start start = Start::waitsUntilItWatches);

  ChildProcess& process() { return process_; }
  // Everything logged so far, to standard error or, in debug mode, to the file.
  std::string log() const;
  // Whether it has begun to watch the keyboard.
  bool watches() const;

 private:
  void waitUntilItWatches();

  std::filesystem::path log_;
  std::filesystem::path debugLog_;
  ChildProcess process_;
};

}  // namespace quorlo
