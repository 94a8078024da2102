#include "program/doctor/diagnosis.h"

#include "base/counted.h"
#include "engine/accessibility_help.h"
#include "text/utf.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <iterator>
#include <utility>

namespace quorlo {
namespace {

using Level = Finding::Level;

// One for each obstacle.
std::vector<Finding> display(const SessionFacts& facts) {
  if (facts.displayProblem) {
    return {{Level::problem, *facts.displayProblem,
             "Run Quorlo inside a graphical session that has an X server."}};
  }
  if (facts.obstacles.empty()) {
    return {
        {Level::fine, "Keys can be watched and posted on this display.",
         "Abbreviations expand from the keys of keyboards. Keys that programs make (xdotool, remote control "
         "and on-screen keyboards by XTEST) are not watched."}};
  }
  std::vector<Finding> findings;
  for (const auto each : facts.obstacles) {
    const auto help = accessibilityHelp(each);
    const bool passes = each == AccessibilityObstacle::keyboardsAreTaken ||
                        each == AccessibilityObstacle::noKeyboard ||
                        each == AccessibilityObstacle::watchingIsInterrupted;
    findings.push_back({passes ? Level::note : Level::problem, toUtf8(help.what), toUtf8(help.remedy)});
  }
  return findings;
}

Finding guard(const SessionFacts& facts) {
  if (facts.guardIsInstalled) return {Level::fine, "The keyboard guard is installed."};
  return {Level::problem, "The program quorlo-keyboard-guard is missing beside quorlo.",
          "Install Quorlo again. Without the guard a hanging Quorlo would keep the keyboard."};
}

Finding tray(const SessionFacts& facts) {
  if (!facts.showsInTray) {
    return {Level::note, "The icon in the tray is switched off.",
            "The menu opens by its hot key and by: quorlo menu"};
  }
  if (facts.hasStatusNotifierHost) return {Level::fine, "The desktop shows tray icons."};
  if (facts.hasXEmbedTray) return {Level::fine, "The desktop shows tray icons (by the older way)."};
  return {
      Level::note, "This desktop shows no tray icons.",
      "Add a tray (\"status notifier\") to the panel; on GNOME, install an extension for tray icons. Until "
      "then the menu opens by its hot key and by: quorlo menu"};
}

Finding clipboard(const SessionFacts& facts) {
  if (!facts.clipboardManager)
    return {Level::fine, "No program that keeps the clipboard's history is running."};
  return {
      Level::note,
      fmt::format("{} keeps the clipboard's history. Quorlo marks what it puts there for a moment as secret, "
                  "which most of these programs respect.",
                  *facts.clipboardManager),
      "If snippets turn up in the history, or a paste brings the wrong text, switch the history off for a "
      "try, and exclude Quorlo in its settings."};
}

Finding passwordFields(const SessionFacts& facts) {
  if (facts.hasAccessibilityBus) {
    return {Level::fine, "Nothing expands in password fields of programs that use the accessibility bus."};
  }
  return {Level::note,
          "The accessibility bus does not run. Abbreviations expand in password fields too, unless a prompt "
          "has the keyboard for itself.",
          "The package at-spi2-core brings that bus. Programs can be excluded in Settings > Applications."};
}

Finding notifications(const SessionFacts& facts) {
  if (!facts.hasSessionBus) {
    return {Level::problem, "There is no session bus.",
            "Start the session with one (dbus-run-session). Without it there are no notifications, and the "
            "commands menu, quit and status cannot reach Quorlo."};
  }
  if (facts.hasNotificationServer) return {Level::fine, "The desktop shows notifications."};
  return {Level::note, "No program shows notifications here.",
          "Start a notification server, for example dunst, to see what Quorlo has to say."};
}

Finding folders(const SessionFacts& facts) {
  if (!facts.unwritableFolder)
    return {Level::fine, "The folders of the settings and the library can be written."};
  return {Level::problem, *facts.unwritableFolder,
          "Make the folder writable, and see that the disk is not full."};
}

Finding library(const SessionFacts& facts) {
  if (facts.libraryProblem) return {Level::problem, *facts.libraryProblem};
  if (!facts.snippets) return {Level::note, "There is no library yet. Quorlo makes one when it starts."};
  return {Level::fine, fmt::format("The library is in order and holds {}.",
                                   counted(*facts.snippets, "snippet", "snippets"))};
}

std::vector<Finding> duplicates(const SessionFacts& facts) {
  std::vector<Finding> findings;
  const auto add = [&findings](const std::vector<std::string>& names, std::string_view text,
                               std::string remedy) {
    if (names.empty()) return;
    findings.push_back(
        {Level::problem, fmt::format("{}: \"{}\".", text, fmt::join(names, "\", \"")), std::move(remedy)});
  };
  add(facts.duplicates.abbreviations,
      "More than one snippet has the abbreviation, of which only the oldest expands",
      "Leave it to the oldest with: quorlo repair");
  add(facts.duplicates.folderTitles,
      "More than one folder has the title, by which commands cannot tell them apart",
      "Rename one of them, or put their snippets together, in the library window.");
  return findings;
}

std::vector<Finding> switches(const SessionFacts& facts) {
  std::vector<Finding> findings;
  if (facts.isRunning) {
    findings.push_back({Level::fine, "Quorlo is running."});
  } else {
    findings.push_back({Level::note, "Quorlo is not running.", "Start it with: quorlo"});
  }
  if (!facts.abbreviationsEnabled) {
    findings.push_back({Level::note, "Abbreviations are switched off.",
                        "Switch them on in the menu, or with: quorlo --abbreviations on"});
  }
  if (!facts.autoPasteIsEnabled) {
    findings.push_back({Level::note,
                        "Auto-Paste is switched off: a snippet chosen from the menu is only copied.",
                        "Switch it on in the menu's Settings."});
  }
  if (!facts.launchesAtLogin) {
    findings.push_back({Level::note, "Quorlo does not start with the desktop.",
                        "Switch on \"Launch at login\" in the menu's Settings."});
  }
  return findings;
}

// What the running Quorlo lacks, as far as this look at the session has not met it too.
void addObstaclesOfRunning(const SessionFacts& facts, std::vector<Finding>& findings) {
  const auto& list = facts.obstaclesOfRunning;
  for (std::size_t i = 0; i + 1 < list.size(); i += 2) {
    if (std::ranges::find(findings, list[i], &Finding::text) != findings.end()) continue;
    findings.push_back({Level::problem, list[i], list[i + 1]});
  }
}

}  // namespace

std::vector<Finding> diagnose(const SessionFacts& facts) {
  auto findings = display(facts);
  if (!facts.displayProblem) {
    findings.push_back(guard(facts));
    findings.push_back(tray(facts));
    findings.push_back(clipboard(facts));
    findings.push_back(passwordFields(facts));
  }
  findings.push_back(notifications(facts));
  findings.push_back(folders(facts));
  findings.push_back(library(facts));
  std::ranges::move(duplicates(facts), std::back_inserter(findings));
  std::ranges::move(switches(facts), std::back_inserter(findings));
  addObstaclesOfRunning(facts, findings);
  return findings;
}

std::string report(const std::vector<Finding>& findings) {
  std::string text;
  for (const auto& [level, what, remedy] : findings) {
    const char* const mark = level == Level::fine   ? "ok      "
                             : level == Level::note ? "note    "
                                                    : "PROBLEM ";
    text += mark + what + "\n";
    if (!remedy.empty()) text += "        " + remedy + "\n";
  }
  const auto problems = std::ranges::count(findings, Level::problem, &Finding::level);
  text += problems == 0   ? "Nothing keeps Quorlo from working.\n"
          : problems == 1 ? "One problem was found.\n"
                          : fmt::format("{} problems were found.\n", problems);
  return text;
}

std::string jsonReport(const std::vector<Finding>& findings) {
  auto list = nlohmann::ordered_json::array();
  for (const auto& [level, what, remedy] : findings) {
    const char* const name = level == Level::fine ? "fine" : level == Level::note ? "note" : "problem";
    list.push_back({{"level", name}, {"text", what}, {"remedy", remedy}});
  }
  // Names of files may be of any bytes.
  return nlohmann::ordered_json{{"findings", std::move(list)}}.dump(
             2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) +
         "\n";
}

}  // namespace quorlo
