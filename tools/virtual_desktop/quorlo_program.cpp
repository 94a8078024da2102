#include "virtual_desktop/quorlo_program.h"

#include "virtual_desktop/wait.h"

#include <stdexcept>

namespace quorlo {

namespace {

void writeSettings(const std::filesystem::path& file, const StoredSettings& settings) {
  std::string members;
  for (const auto& [key, value] : settings) members += (members.empty() ? "\"" : ",\"") + key + "\":" + value;
  std::filesystem::create_directories(file.parent_path());
  writeFile(file, "{" + members + "}");
}

std::filesystem::path freshLog(const VirtualDesktop& desktop) {
  const auto path = desktop.directory() / "quorlo.log";
  std::filesystem::remove(path);
  return path;
}

std::filesystem::path dataFolder(const VirtualDesktop& desktop) {
  return desktop.dataHome() / "org.quorlo.Quorlo";
}

ChildProcess startProgram(VirtualDesktop& desktop, const std::string& program, const std::string& library,
                          const StoredSettings& settings, const std::filesystem::path& log) {
  // Without the last, the first start would replace the delimiters by those of earlier versions' settings.
  StoredSettings standard{{"AutoPasteEnabled", "true"},
                          {"PlaySound", "false"},
                          {"WelcomeViewHasBeenShown", "true"},
                          {"OldDefaultsHaveBeenCopied", "true"}};
  StoredSettings appGroup{{"AbbreviationsEnabled", "true"}};
  for (const auto& [key, value] : settings) (appGroup.contains(key) ? appGroup : standard)[key] = value;
  writeSettings(desktop.configHome() / "quorlo" / "settings.json", standard);
  writeSettings(desktop.configHome() / "quorlo" / "shared-settings.json", appGroup);
  std::filesystem::remove_all(dataFolder(desktop));
  const auto file = desktop.directory() / "library.json";
  writeFile(file, library);
  return desktop.start({program, "--library", file}, log);
}

}  // namespace

QuorloProgram::QuorloProgram(VirtualDesktop& desktop, const std::string& program, const std::string& library,
                             const StoredSettings& settings)
    : log_(freshLog(desktop)),
      debugLog_(dataFolder(desktop) / "Quorlo.log"),
      process_(startProgram(desktop, program, library, settings, log_)) {
  waitUntilItWatches();
}

QuorloProgram::QuorloProgram(VirtualDesktop& desktop, const std::string& program, Start start)
    : log_(freshLog(desktop)),
      debugLog_(dataFolder(desktop) / "Quorlo.log"),
      process_(desktop.start({program}, log_)) {
  if (start == Start::waitsUntilItWatches) waitUntilItWatches();
}

std::string QuorloProgram::log() const {
  return std::filesystem::exists(debugLog_) ? readFile(log_) + readFile(debugLog_) : readFile(log_);
}

bool QuorloProgram::watches() const {
  return log().find("Watching the keyboards.") != std::string::npos;
}

void QuorloProgram::waitUntilItWatches() {
  waitUntil([&] { return watches() || !process_.running(); });
  if (!watches() || !process_.running()) {
    throw std::runtime_error("Quorlo does not watch the keyboard. It wrote:\n" + log());
  }
}

}  // namespace quorlo
