#include "platform/environment/system_environment.h"

#include "platform/environment/preferred_languages.h"
#include "platform/environment/system_time_zone.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <initializer_list>
#include <string_view>
#include <system_error>
#include <utility>

namespace quorlo {
namespace {

namespace fs = std::filesystem;

std::string_view valueOf(const char* variable) {
  const auto* const value = std::getenv(variable);
  return value ? value : "";
}

// The variable that decides on a category of the locale.
std::string_view firstSet(std::initializer_list<const char*> variables) {
  for (const auto* const variable : variables) {
    if (const auto value = valueOf(variable); !value.empty()) return value;
  }
  return {};
}

// In which LANGUAGE does not count.
bool isPlainLocale(std::string_view name) {
  return name.empty() || name == "C" || name == "POSIX";
}

std::vector<std::string> languagesOf(std::initializer_list<const char*> variables) {
  std::vector<std::string_view> values;
  for (const auto* const variable : variables) values.push_back(valueOf(variable));
  return quorlo::preferredLanguages(values);
}

fs::path homeFolder() {
  if (const auto* const home = std::getenv("HOME"); home && *home) return home;
  const auto* const user = getpwuid(getuid());
  return user && user->pw_dir ? user->pw_dir : "/";
}

// A folder of the user's as the XDG Base Directory standard names it; a relative path there is void.
fs::path userFolder(const char* variable, const char* belowHome) {
  const auto* const value = std::getenv(variable);
  const fs::path folder = value ? value : "";
  return folder.is_absolute() ? folder : homeFolder() / belowHome;
}

}  // namespace

SystemEnvironment::SystemEnvironment(fs::path programDirectory)
    : programDirectory_(std::move(programDirectory)) {}

Date SystemEnvironment::now() const {
  return std::chrono::system_clock::now();
}

std::vector<std::string> SystemEnvironment::preferredLanguages() const {
  return languagesOf({"LC_ALL", "LC_TIME", "LANG"});
}

std::vector<std::string> SystemEnvironment::textLanguages() const {
  if (isPlainLocale(firstSet({"LC_ALL", "LC_MESSAGES", "LANG"}))) return {"en"};
  return languagesOf({"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"});
}

TimeZone SystemEnvironment::timeZone() const {
  return systemTimeZone();
}

fs::path SystemEnvironment::dataDirectory() const {
  return userFolder("XDG_DATA_HOME", ".local/share") / "org.quorlo.Quorlo";
}

fs::path SystemEnvironment::configDirectory() const {
  return userFolder("XDG_CONFIG_HOME", ".config") / "quorlo";
}

fs::path SystemEnvironment::resourcesDirectory() const {
  const auto prefix = programDirectory_.parent_path();
  const auto built = prefix / "resources";
  std::error_code failure;
  return fs::is_directory(built / "sounds", failure) ? built : prefix / "share" / "quorlo";
}

}  // namespace quorlo
