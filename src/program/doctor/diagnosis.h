#pragma once

#include "platform/accessibility_trust.h"
#include "program/doctor/duplicates_check.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

// What was found out about the session, the settings and the library, without a judgement.
struct SessionFacts {
  std::optional<std::string> displayProblem;     // why there is no X server to talk to
  std::vector<AccessibilityObstacle> obstacles;  // to watching and posting keys
  bool guardIsInstalled = true;
  bool hasSessionBus = true;
  bool hasStatusNotifierHost = true;
  bool hasXEmbedTray = false;
  bool hasNotificationServer = true;
  bool hasAccessibilityBus = true;
  std::optional<std::string> clipboardManager;  // the name of the program that keeps the clipboard's history
  bool isRunning = true;
  std::vector<std::string> obstaclesOfRunning;  // in turn a fact and what to do about it
  bool abbreviationsEnabled = true;
  bool autoPasteIsEnabled = true;
  bool showsInTray = true;
  bool launchesAtLogin = true;
  std::optional<std::string> unwritableFolder;  // of the settings or the data, with the reason
  std::optional<std::string> libraryProblem;    // what the store says of itself, and what to do
  std::optional<std::size_t> snippets;          // absent while there is no library yet
  LibraryDuplicates duplicates;
};

struct Finding {
  enum class Level { fine, note, problem };
  Level level = Level::fine;
  std::string text;
  std::string remedy = {};  // empty when there is nothing to do
};

// Everything worth saying, in the order in which things depend on each other.
std::vector<Finding> diagnose(const SessionFacts& facts);

// One finding after the other, for a terminal.
std::string report(const std::vector<Finding>& findings);
// The same as a JSON document (docs/formats.md).
std::string jsonReport(const std::vector<Finding>& findings);

}  // namespace quorlo
